// The texts of the program's own messages, which are not those of the service.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The pattern with its placeholders `{0}` to `{9}` filled in, in one pass, so that a `{0}` inside
// an argument is not replaced. A placeholder without an argument stays too.
std::string fillPlaceholders(std::string_view pattern, const std::vector<std::string>& arguments);

// The text of the id with its placeholders filled in; the id itself if it has no text.
std::string programMessage(std::string_view id, const std::vector<std::string>& arguments);

}  // namespace soca
