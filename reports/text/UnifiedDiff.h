// The difference of two files as text that `git apply` and `patch` accept.
#pragma once

#include <string>
#include <string_view>

namespace soca {

// `name` is the file's name without the prefixes `a/` and `b/`. The bytes of the lines are copied
// unchanged, in any encoding and with any line ends. Empty if the files are equal.
std::string unifiedDiff(std::string_view name, std::string_view oldBytes,
                        std::string_view newBytes);

// The same diff with colours for a terminal.
std::string colorDiff(std::string_view diff);

}  // namespace soca
