#include "platform/analyzer/LineTable.h"

#include <algorithm>

namespace ca {

LineTable::LineTable(fl::ustring_view text) {
  constexpr std::size_t usualLineLength = 32;
  starts_.reserve(text.size() / usualLineLength + 1);
  starts_.push_back(0);
  for (std::size_t at = text.find(u'\n'); at != fl::ustring_view::npos;
       at = text.find(u'\n', at + 1)) {
    starts_.push_back(static_cast<std::uint32_t>(at + 1));
  }
}

std::uint32_t LineTable::lineOf(std::uint32_t position) const {
  const auto behind = std::upper_bound(starts_.begin(), starts_.end(), position);
  return static_cast<std::uint32_t>(behind - starts_.begin() - 1);
}

}  // namespace ca
