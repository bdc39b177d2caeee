#include "platform/text/TextSearch.h"

#include <algorithm>

namespace fl {

TextFinder::TextFinder(ustring_view pattern) : pattern_(pattern) {
  const auto limited = [](std::size_t skip) {
    return static_cast<std::uint8_t>(std::min<std::size_t>(skip, 0xFF));
  };
  skips_.fill(limited(pattern.size()));
  for (std::size_t i = 0; i + 1 < pattern.size(); ++i) {
    skips_[slotOf(pattern[i])] = limited(pattern.size() - 1 - i);
  }
}

std::size_t TextFinder::find(ustring_view text, std::size_t from) const {
  const std::size_t length = pattern_.size();
  if (length == 0) return from <= text.size() ? from : ustring_view::npos;
  const char16_t last = pattern_.back();
  for (std::size_t end = from + length; end <= text.size();) {
    const char16_t unit = text[end - 1];
    if (unit == last && areEqualTexts(text.substr(end - length, length), pattern_)) {
      return end - length;
    }
    end += skips_[slotOf(unit)];
  }
  return ustring_view::npos;
}

std::size_t findBehindDot(ustring_view text, ustring_view name) {
  const TextFinder finder(name);
  for (std::size_t place = finder.find(text, 1); place != ustring_view::npos;
       place = finder.find(text, place + 1)) {
    if (text[place - 1] == u'.') return place + name.size();
  }
  return ustring_view::npos;
}

}  // namespace fl
