#include "platform/text/Letters.h"

#include <algorithm>
#include <array>

#include "LetterRanges.h"
#include "platform/text/Utf8.h"

namespace fl {
namespace {

constexpr bool isAsciiLetter(char32_t c) {
  return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
}

constexpr bool isAsciiNamePart(char32_t c) {
  return isAsciiLetter(c) || (c >= U'0' && c <= U'9') || c == U'_';
}

// The character at `index`, which moves to the next one; an unpaired surrogate is returned as it
// is.
char32_t takeCharacter(ustring_view text, std::size_t& index) {
  const char16_t unit = text[index++];
  if (!utf8::isHighSurrogate(unit) || index == text.size()) return unit;
  if (!utf8::isLowSurrogate(text[index])) return unit;
  return utf8::combineSurrogates(unit, text[index++]);
}

}  // namespace

bool isLetter(char32_t character) {
  if (character < 0x80) return isAsciiLetter(character);
  const auto* const range =
      std::ranges::lower_bound(letterRanges, character, {}, &LetterRange::last);
  return range != letterRanges.end() && range->first <= character;
}

bool isIdentifier(ustring_view name) {
  std::size_t index = 0;
  if (name.empty() || !isLetter(takeCharacter(name, index))) return false;
  while (index < name.size()) {
    const char32_t character = takeCharacter(name, index);
    if (character < 0x80 ? !isAsciiNamePart(character) : !isLetter(character)) return false;
  }
  return true;
}

}  // namespace fl
