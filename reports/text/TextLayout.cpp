#include "reports/text/TextLayout.h"

#include <algorithm>

namespace soca {

std::string groupDigits(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t i = text.size(); i > 3;) text.insert(i -= 3, 1, ',');
  return text;
}

std::string wrap(std::string_view text, std::string_view indent, std::string_view firstIndent) {
  std::string result;
  std::string line(firstIndent);
  bool isFirstWord = true;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!isFirstWord && line.size() + 1 + word.size() > lineWidth) {
      result += line + '\n';
      line = indent;
    } else if (!isFirstWord) {
      line += ' ';
    }
    line += word;
    isFirstWord = false;
  }
  return result + line + '\n';
}

std::string wrap(std::string_view text, std::string_view indent) {
  return wrap(text, indent, indent);
}

}  // namespace soca
