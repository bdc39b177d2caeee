// Text wrapped into lines for a screen.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace soca {

// The largest number of characters of a line.
constexpr std::size_t lineWidth = 80;

// "12,345"
std::string groupDigits(std::size_t number);

// The words of the text in lines that begin with `indent`, the first one with `firstIndent`.
std::string wrap(std::string_view text, std::string_view indent, std::string_view firstIndent);
std::string wrap(std::string_view text, std::string_view indent);

}  // namespace soca
