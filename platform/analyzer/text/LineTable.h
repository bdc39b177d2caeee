// The line starts of a text.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/analyzer/text/CharacterMap.h"

namespace ca {

class LineTable {
 public:
  // `size` is the size of the text from which `map` was read.
  LineTable(const CharacterMap& map, std::size_t size);

  // The zero-based line of the code unit at `position`, which may be just after the text. A larger
  // position, such as the wrapped one before the first unit, is on the first line.
  std::uint32_t lineOf(std::uint32_t position) const;
  // The position of the first code unit of a line.
  std::uint32_t startOf(std::uint32_t line) const { return starts_[line]; }

 private:
  // Has one more entry after the last line, larger than any position in the text.
  std::vector<std::uint32_t> starts_;
  // The line of the first code unit of each word of the map, from which a search covers at most 64
  // units.
  std::vector<std::uint32_t> marks_;
  std::size_t size_;
};

}  // namespace ca
