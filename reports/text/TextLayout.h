// Text in lines that fit a screen.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace soca {

// How many characters a line may have.
constexpr std::size_t lineWidth = 80;

// The text in lines of words, each line behind `indent`, the first one behind `firstIndent`.
std::string wrap(std::string_view text, std::string_view indent, std::string_view firstIndent);
std::string wrap(std::string_view text, std::string_view indent);

}  // namespace soca
