// Where the lines of a text begin.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/UString.h"

namespace ca {

class LineTable {
 public:
  explicit LineTable(fl::ustring_view text);

  // The zero-based line of the code unit at `position`.
  std::uint32_t lineOf(std::uint32_t position) const;
  // The position of the first code unit of a line.
  std::uint32_t startOf(std::uint32_t line) const { return starts_[line]; }

 private:
  std::vector<std::uint32_t> starts_;
};

}  // namespace ca
