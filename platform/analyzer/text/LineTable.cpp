#include "platform/analyzer/text/LineTable.h"

#include <bit>

namespace ca {

LineTable::LineTable(const CharacterMap& map, std::size_t size) : size_(size) {
  constexpr std::size_t usualLineLength = 32;
  starts_.reserve(size / usualLineLength + 2);
  starts_.push_back(0);
  marks_.reserve(map.lineEnds().size());
  std::uint32_t position = 0;
  for (std::uint64_t bits : map.lineEnds()) {
    marks_.push_back(static_cast<std::uint32_t>(starts_.size() - 1));
    for (; bits != 0; bits &= bits - 1) {
      starts_.push_back(position + static_cast<std::uint32_t>(std::countr_zero(bits)) + 1);
    }
    position += CharacterMap::unitsPerWord;
  }
}

std::uint32_t LineTable::lineOf(std::uint32_t position) const {
  if (position > size_) return 0;
  std::uint32_t line = marks_[position / CharacterMap::unitsPerWord];
  while (starts_[line + 1] <= position) ++line;
  return line;
}

}  // namespace ca
