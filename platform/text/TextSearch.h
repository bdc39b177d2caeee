// Fast searches in the text of a file, and comparisons of texts.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/text/UString.h"

namespace fl {

inline bool areEqualTexts(ustring_view left, ustring_view right) {
  return left.size() == right.size() &&
         (left.empty() ||
          std::memcmp(left.data(), right.data(), left.size() * sizeof(char16_t)) == 0);
}

// The position of the first U+000A at or after `from`, or npos.
inline std::size_t findLineEnd(ustring_view text, std::size_t from) {
  // memchr is faster than a search for 16-bit units. Other bytes with the same value are skipped.
  constexpr std::size_t lowByte = std::endian::native == std::endian::little ? 0 : 1;
  const char* const bytes = reinterpret_cast<const char*>(text.data());
  const std::size_t size = text.size() * sizeof(char16_t);
  std::size_t next = from * sizeof(char16_t);
  while (next < size) {
    const void* const found = std::memchr(bytes + next, '\n', size - next);
    if (found == nullptr) break;
    next = static_cast<std::size_t>(static_cast<const char*>(found) - bytes);
    const std::size_t place = next / sizeof(char16_t);
    if (next % sizeof(char16_t) == lowByte && text[place] == u'\n') return place;
    ++next;
  }
  return ustring_view::npos;
}

// Searches one pattern in any number of texts. The pattern must outlive the finder.
class TextFinder {
 public:
  explicit TextFinder(ustring_view pattern);

  // The position of the first occurrence that begins at or after `from`, or npos.
  std::size_t find(ustring_view text, std::size_t from = 0) const;

 private:
  static std::size_t slotOf(char16_t unit) { return unit & 0xFFU; }

  ustring_view pattern_;
  // For each low byte of a code unit, the distance to move the pattern when that unit is at its
  // last place. Units with the same low byte share an entry, which is the smallest of their
  // distances.
  std::array<std::uint8_t, 256> skips_;
};

// The position after the first occurrence of "." followed by `name`, or npos.
std::size_t findBehindDot(ustring_view text, ustring_view name);

}  // namespace fl
