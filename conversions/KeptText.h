// Checks that an edited text is the old one except for its edits.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// Compares the text outside the edits, character by character. Only text that the edit engine
// removes with an edit may be missing: a delimiter and the blanks before it, edited lines that are
// left blank or have only a continuation, and such a last line. The engine's rules are implemented
// here a second time on purpose, so that a fault of the engine cannot hide itself.
//
// Returns the fault; empty if there is none. Overlapping edits are a fault too, because not all of
// them can be at their place.
std::optional<std::string> findLostText(fl::ustring_view oldText, fl::ustring_view newText,
                                        const std::vector<PlannedAction>& actions);

}  // namespace soca
