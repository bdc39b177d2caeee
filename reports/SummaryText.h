// The numbers of a run as text.
#pragma once

#include <cstddef>
#include <string>

#include "reports/Summary.h"

namespace soca {

enum class TenseType { wouldChange, changed };

// Whose numbers they are: the program's, which has commas in large numbers and knows of conversions
// that are left out, or those of a run as the service.
enum class NumbersType { program, service };

// One line without a line end: "looked at 15 classes: 12 would change, 3 stay as they are".
std::string formatSummary(const Summary& summary, TenseType tense, NumbersType numbers);

// The lines after that one for a run as the service: conversions, findings and failures by kind,
// the most frequent first, each on lines of its own, if there are any. `width` is that of the
// screen, in columns.
std::string formatDetails(const Summary& summary, std::size_t width);

// The same for the program: a table of what was found, made and left out, with a row for each
// member of the group; then the reasons for leaving out, the findings, and the classes that failed,
// are undecided or were skipped, each by id. For packages the summary must have counted them.
std::string formatNumbers(const Summary& summary, GroupType group, std::size_t width);

}  // namespace soca
