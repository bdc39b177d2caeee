// The extents of the actions applied so far.
#pragma once

#include <cstdint>
#include <map>

#include "model/Extent.h"

namespace soca {

// Keeps only the lines of the extents, against which later ones are tested. An extent that ends
// before its start, such as that of an empty group, has no lines.
class ClaimedExtents {
 public:
  // Whether the extent begins on a line that an earlier one touches.
  bool collidesWith(const Extent& extent) const;
  void add(const Extent& extent);

 private:
  // First and last line of each range; ranges never overlap, so one look-up tests an extent.
  std::map<std::uint64_t, std::uint64_t> stretches_;
};

}  // namespace soca
