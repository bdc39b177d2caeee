// The class of an ASCII character in the language.
#pragma once

#include <array>
#include <cstdint>

namespace ca {

namespace characters {

inline constexpr std::uint8_t blank = 1;
inline constexpr std::uint8_t letter = 2;
inline constexpr std::uint8_t digit = 4;
inline constexpr std::uint8_t underscore = 8;
// An operator, `.`, `:`, `@` or `~`.
inline constexpr std::uint8_t operation = 16;
inline constexpr std::uint8_t nameContinuation = letter | digit | underscore;

constexpr std::array<std::uint8_t, 128> makeTable() {
  std::array<std::uint8_t, 128> table{};
  for (const unsigned char c : {'\t', '\v', '\f', '\r', ' '}) table[c] = blank;
  for (unsigned c = 'a'; c <= 'z'; ++c) table[c] = letter;
  for (unsigned c = 'A'; c <= 'Z'; ++c) table[c] = letter;
  for (unsigned c = '0'; c <= '9'; ++c) table[c] = digit;
  table['_'] = underscore;
  for (const unsigned char c :
       {'+', '-', '*', '/', '\\', '^', '<', '>', '=', '&', '|', '.', ':', '@', '~'}) {
    table[c] = operation;
  }
  return table;
}

constexpr std::array<std::uint8_t, 128> table = makeTable();

}  // namespace characters

constexpr bool isOfClass(char16_t c, std::uint8_t classes) {
  return c < 128 && (characters::table[c] & classes) != 0;
}

constexpr bool isBlank(char16_t c) { return isOfClass(c, characters::blank); }
constexpr bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

}  // namespace ca
