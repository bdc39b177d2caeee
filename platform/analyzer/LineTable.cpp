#include "platform/analyzer/LineTable.h"

#include <algorithm>

namespace ca {

LineTable::LineTable(const CharacterMap& map, std::size_t size)
    : marks_(size / unitsPerMark + 1), size_(size) {
  constexpr std::size_t usualLineLength = 32;
  starts_.reserve(size / usualLineLength + 2);
  starts_.push_back(0);
  std::uint32_t line = 0;
  std::uint32_t mark = 0;
  map.forEachLineEnd([&](std::uint32_t position) {
    for (; mark * unitsPerMark <= position; ++mark) marks_[mark] = line;
    starts_.push_back(position + 1);
    ++line;
  });
  std::fill(marks_.begin() + mark, marks_.end(), line);
  starts_.push_back(UINT32_MAX);
}

std::uint32_t LineTable::lineOf(std::uint32_t position) const {
  if (position > size_) return 0;
  std::uint32_t line = marks_[position / unitsPerMark];
  while (starts_[line + 1] <= position) ++line;
  return line;
}

}  // namespace ca
