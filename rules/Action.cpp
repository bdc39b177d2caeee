#include "rules/Action.h"

#include <algorithm>
#include <limits>

namespace soca {

Extent ActionGroup::getExtent() const {
  constexpr auto behindAll = std::numeric_limits<std::uint64_t>::max();
  Extent extent = {{behindAll, behindAll}, {0, 0}};
  for (const auto& action : actions_) {
    const Extent other = action->getExtent();
    extent.start = std::min(extent.start, other.start);
    extent.end = std::max(extent.end, other.end);
  }
  return extent;
}

bool ActionGroup::isGroup() const { return true; }

const ActionList& ActionGroup::getActions() const { return actions_; }

bool SingleAction::isGroup() const { return false; }

std::uint64_t SingleAction::getDelimiterFlags() const { return 0; }

}  // namespace soca
