// Whether an edited text is the old one but for its edits.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// Compares what stands outside the extents of the edits, character for character. Only what the
// edit engine takes along with an edit may be missing: a delimiter and the blanks in front of it,
// edited lines that are left blank or hold only a continuation, and a last line that does.
//
// Gives what is wrong, nothing if all is well. Edits whose extents overlap are wrong too, since
// they can't all stand where they were meant to.
std::optional<std::string> findLostText(fl::ustring_view oldText, fl::ustring_view newText,
                                        const std::vector<PlannedAction>& actions);

}  // namespace soca
