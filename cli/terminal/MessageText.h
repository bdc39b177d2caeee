// Messages in the form for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace soca::cli {

// The text with U+FFFD in place of control characters; line ends and tabs stay. Names of files and
// classes may have any characters.
std::string withoutControls(std::string_view text);

// Lines of messages with colours for the word of severity, `error:`, `warning:`, `note:` or
// `hint:`, and for the caret below a line.
std::string colorMessages(std::string_view lines);

}  // namespace soca::cli
