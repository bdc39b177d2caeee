// The texts of the program's own messages, which are not those of the service.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The pattern with its placeholders `{0}` to `{9}` filled in, in one pass: what looks like one
// inside an argument stays. A placeholder without an argument stays as well.
std::string fillPlaceholders(std::string_view pattern, const std::vector<std::string>& arguments);

// The text that belongs to the id, with its placeholders filled in; the id for one without a text.
std::string programMessage(std::string_view id, const std::vector<std::string>& arguments);

}  // namespace soca
