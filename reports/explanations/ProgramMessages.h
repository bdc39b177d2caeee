// The texts of what the program itself reports, beside the messages of the service.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace soca::cli {

// The text that belongs to the id, with its placeholders filled in; the id for one without a text.
std::string programMessage(std::string_view id, std::initializer_list<std::string_view> arguments);

}  // namespace soca::cli
