// The extents of the actions applied so far.
#pragma once

#include <cstdint>
#include <map>

#include "model/Extent.h"

namespace soca {

// Keeps of the extents what a later one is tested against, which is their lines. An extent that
// ends in front of its start, as that of a group of none does, has no line.
class ClaimedExtents {
 public:
  // Whether the extent begins on a line that an earlier one touches.
  bool collidesWith(const Extent& extent) const;
  void add(const Extent& extent);

 private:
  // First and last line of each stretch; no two overlap.
  std::map<std::uint64_t, std::uint64_t> stretches_;
};

}  // namespace soca
