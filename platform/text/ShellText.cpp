#include "platform/text/ShellText.h"

#include <algorithm>

namespace fl {
namespace {

// Bytes of UTF-8 outside ASCII are too.
bool isPlain(char c) {
  const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  return isLetter || static_cast<unsigned char>(c) >= 0x80 ||
         std::string_view("_./+,:@%-").find(c) != std::string_view::npos;
}

}  // namespace

std::string quoteForShell(std::string_view text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + '\'';
}

std::string makeShellWord(std::string_view text) {
  const bool isWord = !text.empty() && std::ranges::all_of(text, isPlain);
  return isWord ? std::string(text) : quoteForShell(text);
}

}  // namespace fl
