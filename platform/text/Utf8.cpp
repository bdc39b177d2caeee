#include "platform/text/Utf8.h"

namespace fl::utf8 {
namespace {

// The sequence that a first byte begins: its length in bytes, and the range of the second byte,
// which excludes overlong forms, surrogates and characters beyond U+10FFFF.
struct Form {
  unsigned length;
  unsigned char lowest;
  unsigned char highest;
};

Form formOf(unsigned char first) {
  if (first >= 0xC2 && first <= 0xDF) return {2, 0x80, 0xBF};
  if (first == 0xE0) return {3, 0xA0, 0xBF};
  if (first == 0xED) return {3, 0x80, 0x9F};
  if (first >= 0xE1 && first <= 0xEF) return {3, 0x80, 0xBF};
  if (first == 0xF0) return {4, 0x90, 0xBF};
  if (first == 0xF4) return {4, 0x80, 0x8F};
  if (first >= 0xF1 && first <= 0xF3) return {4, 0x80, 0xBF};
  return {0, 0, 0};
}

// An upper bound of the bytes for the text: one for a unit in ASCII, three for others.
std::size_t boundOfBytes(ustring_view text) {
  std::size_t bound = text.size();
  const char16_t* next = text.data();
  const char16_t* const end = next + text.size();
  for (; end - next >= 16; next += 16) {
    if ((bitsOf32Bytes(next) & notAsciiUnits) != 0) bound += 32;
  }
  return bound + 2 * static_cast<std::size_t>(end - next);
}

// Reads the character at `next`, which may be a surrogate pair, and moves `next` after it.
char32_t takeCharacter(const char16_t*& next, const char16_t* end) {
  const char16_t unit = *next++;
  if (!isHighSurrogate(unit) || next == end || !isLowSurrogate(*next)) return unit;
  return combineSurrogates(unit, *next++);
}

}  // namespace

Decoded decode(const char* bytes, std::size_t available) {
  const auto byteAt = [bytes](unsigned i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char first = byteAt(0);
  if (first < 0x80) return {first, 1};
  const Form form = formOf(first);
  if (form.length == 0) return {noCharacter, 1};
  char32_t character = first & (0x7FU >> form.length);
  for (unsigned i = 1; i < form.length; ++i) {
    const unsigned char lowest = i == 1 ? form.lowest : 0x80;
    const unsigned char highest = i == 1 ? form.highest : 0xBF;
    if (i == available || byteAt(i) < lowest || byteAt(i) > highest) return {noCharacter, i};
    character = character << 6U | (byteAt(i) & 0x3FU);
  }
  return {character, form.length};
}

std::optional<std::size_t> decodeText(std::string_view bytes, FaultType fault, char16_t* to) {
  char16_t* out = to;
  const char* next = bytes.data();
  const char* const end = next + bytes.size();
  while (true) {
    const std::size_t run = widenAscii(next, end, out);
    next += run;
    out += run;
    if (next == end) return static_cast<std::size_t>(out - to);
    const auto [character, length] = decode(next, static_cast<std::size_t>(end - next));
    const bool isFault = character == noCharacter;
    if (isFault && fault == FaultType::refuse) return std::nullopt;
    next += length;
    out = encode(isFault ? replacementCharacter : character, out);
  }
}

std::optional<std::string> encodeText(ustring_view text, FaultType fault) {
  const char16_t* next = text.data();
  const char16_t* const end = next + text.size();
  std::string bytes(text.size(), '\0');
  std::size_t run = narrowRun<0x7F>(next, end, bytes.data());
  if (run == text.size()) return bytes;
  bytes.resize(boundOfBytes(text));
  char* out = bytes.data();
  while (true) {
    next += run;
    out += run;
    if (next == end) break;
    const char32_t character = takeCharacter(next, end);
    const bool isFault = isSurrogate(character);
    if (isFault && fault == FaultType::refuse) return std::nullopt;
    out = encode(isFault ? replacementCharacter : character, out);
    run = narrowRun<0x7F>(next, end, out);
  }
  bytes.resize(static_cast<std::size_t>(out - bytes.data()));
  return bytes;
}

}  // namespace fl::utf8
