// UTF-8: single characters, runs of ASCII, and whole texts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::utf8 {

inline constexpr char32_t replacementCharacter = 0xFFFD;
inline constexpr char32_t noCharacter = 0xFFFFFFFF;

constexpr bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
constexpr bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

constexpr char32_t combineSurrogates(char16_t high, char16_t low) {
  return 0x10000 + ((char32_t{high} - 0xD800) << 10U) + (char32_t{low} - 0xDC00);
}

// A character and the number of its bytes. For invalid bytes, `length` is that of the longest
// prefix of a character, at least 1.
struct Decoded {
  char32_t character;
  unsigned length;
};

// The character that begins at `bytes`; `available` bytes can be read, at least one.
Decoded decode(const char* bytes, std::size_t available);

// Writes the character, which is no surrogate, and returns the position after it.
inline char* encode(char32_t c, char* out) {
  const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
    return out;
  }
  if (c < 0x800) {
    put(0xC0 | c >> 6U);
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12U);
    put(0x80 | (c >> 6U & 0x3F));
  } else {
    put(0xF0 | c >> 18U);
    put(0x80 | (c >> 12U & 0x3F));
    put(0x80 | (c >> 6U & 0x3F));
  }
  put(0x80 | (c & 0x3F));
  return out;
}

// Writes the character as one or two code units, and returns the position after it.
inline char16_t* encode(char32_t c, char16_t* out) {
  if (c < 0x10000) {
    *out++ = static_cast<char16_t>(c);
    return out;
  }
  *out++ = static_cast<char16_t>(0xD7C0 + (c >> 10U));
  *out++ = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
  return out;
}

// Loops of a fixed length compile to a few wide instructions; with the local copy the compiler
// knows that source and target do not overlap.
template <std::size_t size>
inline void widen(const char* from, char16_t* to) {
  std::array<unsigned char, size> bytes;
  std::memcpy(bytes.data(), from, sizeof bytes);
  for (std::size_t i = 0; i < size; ++i) to[i] = bytes[i];
}

template <std::size_t size>
inline void narrow(const char16_t* from, char* to) {
  std::array<char16_t, size> units;
  std::memcpy(units.data(), from, sizeof units);
  for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<char>(units[i]);
}

// Eight bytes of any alignment as one word.
inline std::uint64_t loadWord(const void* from) {
  std::uint64_t word = 0;
  std::memcpy(&word, from, sizeof word);
  return word;
}

// The bitwise or of the 32 bytes from `from` on, as one word.
template <class Unit>
inline std::uint64_t bitsOf32Bytes(const Unit* from) {
  constexpr std::size_t step = sizeof(std::uint64_t) / sizeof(Unit);
  return (loadWord(from) | loadWord(from + step)) |
         (loadWord(from + 2 * step) | loadWord(from + 3 * step));
}

inline constexpr std::uint64_t notAsciiBytes = 0x8080808080808080;
inline constexpr std::uint64_t notAsciiUnits = 0xFF80FF80FF80FF80;
inline constexpr std::uint64_t notLatin1Units = 0xFF00FF00FF00FF00;

// Copies the leading ASCII characters of [from, end) and returns their number.
inline std::size_t widenAscii(const char* from, const char* end, char16_t* to) {
  const char* const start = from;
  for (; end - from >= 32 && (bitsOf32Bytes(from) & notAsciiBytes) == 0; from += 32, to += 32) {
    widen<32>(from, to);
  }
  for (; end - from >= 8 && (loadWord(from) & notAsciiBytes) == 0; from += 8, to += 8) {
    widen<8>(from, to);
  }
  for (; from != end && static_cast<unsigned char>(*from) < 0x80; ++from, ++to) {
    *to = static_cast<unsigned char>(*from);
  }
  return static_cast<std::size_t>(from - start);
}

// Copies the leading units of [from, end) up to `last`, which is 0x7F or 0xFF, and returns their
// number.
template <char16_t last>
inline std::size_t narrowRun(const char16_t* from, const char16_t* end, char* to) {
  static_assert(last == 0x7F || last == 0xFF);
  constexpr std::uint64_t mask = last == 0x7F ? notAsciiUnits : notLatin1Units;
  const char16_t* const start = from;
  for (; end - from >= 16 && (bitsOf32Bytes(from) & mask) == 0; from += 16, to += 16) {
    narrow<16>(from, to);
  }
  for (; end - from >= 4 && (loadWord(from) & mask) == 0; from += 4, to += 4) narrow<4>(from, to);
  for (; from != end && *from <= last; ++from, ++to) *to = static_cast<char>(*from);
  return static_cast<std::size_t>(from - start);
}

// How to treat text that cannot be converted: write U+FFFD, or fail.
enum class FaultType { replace, refuse };

// Writes the text of `bytes` to `to`, which has room for one unit for each byte, and returns its
// length; empty for a refused fault.
std::optional<std::size_t> decodeText(std::string_view bytes, FaultType fault, char16_t* to);

// The text in UTF-8; empty for a refused fault.
std::optional<std::string> encodeText(ustring_view text, FaultType fault);

}  // namespace fl::utf8
