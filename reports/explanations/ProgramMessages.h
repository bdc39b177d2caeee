// The texts of the program's own messages, which are not those of the service.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace soca::cli {

// The text of the id with its placeholders filled in; the id itself if it has no text.
std::string programMessage(std::string_view id, std::initializer_list<std::string_view> arguments);

}  // namespace soca::cli
