// Where the lines of a text begin.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/analyzer/text/CharacterMap.h"

namespace ca {

class LineTable {
 public:
  // `size` is that of the text that `map` was made of.
  LineTable(const CharacterMap& map, std::size_t size);

  // The zero-based line of the code unit at `position`, which may be just behind the text. All that
  // lies further, such as the place before the first unit, counts for the first line.
  std::uint32_t lineOf(std::uint32_t position) const;
  // The position of the first code unit of a line.
  std::uint32_t startOf(std::uint32_t line) const { return starts_[line]; }

 private:
  // With one more behind the last line, which no position reaches.
  std::vector<std::uint32_t> starts_;
  // The line of the first code unit of each word of a map, from which it is not far to the line of
  // any other.
  std::vector<std::uint32_t> marks_;
  std::size_t size_;
};

}  // namespace ca
