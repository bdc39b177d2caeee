// A place in a source text, as line and column.
#pragma once

#include <compare>
#include <cstdint>
#include <ostream>

namespace soca {

// Both are zero-based; lines are separated by U+000A only, and the column counts UTF-16 code units
// in the line. Positions are ordered by line, then by column.
//
// A column may have the all-ones value: the place one before the first column, which is the place
// before an `end` that begins its line. Adding one to it gives column 0.
struct SourcePosition {
  std::uint64_t line = 0;
  std::uint64_t column = 0;

  friend bool operator==(const SourcePosition&, const SourcePosition&) = default;
  friend auto operator<=>(const SourcePosition&, const SourcePosition&) = default;
};

// Prints "(line,column)". The stream's locale must support numbers in 16-bit characters.
std::basic_ostream<char16_t>& operator<<(std::basic_ostream<char16_t>& out,
                                         const SourcePosition& position);

}  // namespace soca
