// Messages in colours for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace soca::cli {

// Lines of messages with colours for the word of severity, `error:`, `warning:`, `note:` or
// `hint:`, and for the caret below a line.
std::string colorMessages(std::string_view lines);

}  // namespace soca::cli
