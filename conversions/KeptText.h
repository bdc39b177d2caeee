// Checks that an edited text is the old one except for its edits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

struct LostText {
  // One clause in UTF-8.
  std::string text;
  // Of the old text, counted from 0: the fault is near it.
  std::uint64_t line = 0;
};

// Compares the text outside the edits, character by character. Only text that the edit engine
// removes with an edit may be missing: a delimiter and the blanks before it, edited lines that are
// left blank or have only a continuation, and such a last line. The engine's rules are implemented
// here a second time on purpose, so that a fault of the engine cannot hide itself.
//
// Returns the fault; empty if there is none. Overlapping edits are a fault too, because not all of
// them can be at their place.
std::optional<LostText> findLostText(fl::ustring_view oldText, fl::ustring_view newText,
                                     const std::vector<PlannedAction>& actions);

}  // namespace soca
