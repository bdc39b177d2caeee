// Properties of the passes over any class.
#pragma once

#include "conversions/risk/Risk.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

// Updates the class in passes, as the program does if no other class reaches it, and returns the
// number of passes that changed the text; 0 if it cannot be planned. Throws a Violation unless:
// - in each pass, the text is that of its made conversions alone, and passes the checks;
// - a pass that is made by itself, after the same history, gives the same text;
// - each conversion has an id of its own, a place in the text as it was read, and is made with at
//   most this risk, or has a reason why not; those that are left out are those of the last text;
// - the changes of the text as it was read give the last text, and name conversions that are made;
// - a client that needs nothing but the findings gets the same text, numbers and lines;
// - a second update of the last text changes nothing;
// - with tidy edits, there are no more lines that end with a blank.
unsigned checkPasses(const fl::ustring& className, RiskType highestRisk, bool isTidy = false);

}  // namespace soca::fuzz
