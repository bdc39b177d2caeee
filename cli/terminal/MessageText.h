// Messages as a terminal gets them.
#pragma once

#include <string>
#include <string_view>

namespace soca::cli {

// The text with U+FFFD in place of what a terminal would obey; line ends and tabs stay. Names of
// files and classes may hold anything.
std::string withoutControls(std::string_view text);

// Lines of messages with the word that says how grave each one is, `error:`, `warning:`, `note:` or
// `hint:`, and the caret below a line in colour.
std::string colorMessages(std::string_view lines);

}  // namespace soca::cli
