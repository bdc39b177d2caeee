// A conversion that is not made, in words for users.
#pragma once

#include <string>

#include "conversions/Conversions.h"
#include "conversions/Finding.h"

namespace soca {

// The text whose lines a description has: as it was read, or after the update.
enum class LinesType { old, updated };

// "method 'f', to be renamed to 'g'"
std::string subjectOf(const Conversion& conversion);

// The detail of a reason with its lines: "the source refers to it (lines 12 and 40)".
std::string describeReason(const ConversionReason& reason, LinesType lines);

// What is not made, and why: "method 'f' is not renamed to 'g': the source refers to it (lines 12
// and 40)". Without a full stop at its end, and without the line of the conversion itself.
std::string describeLeftOut(const Conversion& conversion, const ConversionReason& reason,
                            LinesType lines);

// "lines 12 to 14 laid apart for method 'f'". `layout` are the lines that were laid apart for the
// conversion.
std::string describeLayout(const Conversion& conversion, const ConversionReason& layout,
                           LinesType lines);

// What to do about a reason, from its explanation: one sentence; empty if there is none.
std::string adviceOn(const ConversionReason& reason);

// What the program adds to the text of the finding: what is expected and found, or the lines of the
// places that stand in the way: "referred to in lines 12 and 40". Empty if there is nothing.
std::string detailOf(const Finding& finding, LinesType lines);

// The text of the finding with its detail.
std::string describeFinding(const Finding& finding, LinesType lines);

}  // namespace soca
