#include "service/ClaimedExtents.h"

#include <algorithm>
#include <iterator>

namespace soca {

bool ClaimedExtents::collidesWith(const Extent& extent) const {
  const auto next = stretches_.upper_bound(extent.start.line);
  return next != stretches_.begin() && extent.start.line <= std::prev(next)->second;
}

void ClaimedExtents::add(const Extent& extent) {
  std::uint64_t first = extent.start.line;
  std::uint64_t last = extent.end.line;
  if (last < first) return;
  // Merges the new range of lines with all that it overlaps.
  auto from = stretches_.lower_bound(first);
  if (from != stretches_.begin() && std::prev(from)->second >= first) first = (--from)->first;
  const auto to = stretches_.upper_bound(last);
  for (auto stretch = from; stretch != to; ++stretch) last = std::max(last, stretch->second);
  stretches_.emplace_hint(stretches_.erase(from, to), first, last);
}

}  // namespace soca
