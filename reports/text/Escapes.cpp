#include "reports/text/Escapes.h"

#include <fmt/core.h>

#include <algorithm>

#include "platform/text/Utf8.h"

namespace soca {
namespace {

bool isPlain(char character) { return character >= 0x20 && character < 0x7F; }

void addEscapes(std::string_view character, char32_t code, std::string& text) {
  if (code != fl::utf8::noCharacter) {
    text += fmt::format("\\u{:04x}", static_cast<unsigned>(code));
    return;
  }
  for (const char byte : character) {
    text += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
  }
}

// `isKept` is asked with the rest of the text, which begins with an unsafe character.
template <class IsKept>
std::string escape(std::string_view text, const IsKept& isKept) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const auto plainEnd = std::ranges::find_if_not(text, isPlain);
    escaped.append(text.begin(), plainEnd);
    text.remove_prefix(static_cast<std::size_t>(plainEnd - text.begin()));
    if (text.empty()) break;
    const auto [code, length] = fl::utf8::decode(text.data(), text.size());
    const std::string_view character = text.substr(0, length);
    if (isUnsafe(code) && !isKept(text)) {
      addEscapes(character, code, escaped);
    } else {
      escaped += character;
    }
    text.remove_prefix(length);
  }
  return escaped;
}

}  // namespace

bool isUnsafe(char32_t character) {
  const auto isIn = [character](char32_t first, char32_t last) {
    return character >= first && character <= last;
  };
  // U+2028 and U+2029 are line ends; the other ranges above ASCII override the direction of text.
  return character < 0x20 || isIn(0x7F, 0x9F) || isIn(0x2028, 0x202E) || isIn(0x2066, 0x2069) ||
         character == fl::utf8::noCharacter;
}

std::string withEscapes(std::string_view text) {
  return escape(text, [](std::string_view rest) {
    return rest.front() == '\n' || rest.front() == '\t' || rest.starts_with("\r\n");
  });
}

std::string withEscapesInLine(std::string_view line) {
  return escape(line, [](std::string_view) { return false; });
}

}  // namespace soca
