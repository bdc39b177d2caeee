#include "rules/AbstractActionFactory.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace soca {

std::size_t RuleResult::addConversion(const RuleConversion& conversion) {
  conversions.push_back(conversion);
  return conversions.size() - 1;
}

void RuleResult::addAction(std::unique_ptr<Action> action, std::size_t conversion) {
  owners.push_back(
      {static_cast<std::uint32_t>(actions.size()), static_cast<std::uint32_t>(conversion)});
  actions.push_back(std::move(action));
}

void RuleResult::addAction(std::unique_ptr<Action> action,
                           std::vector<std::size_t> conversionsOfAction) {
  std::ranges::sort(conversionsOfAction);
  const auto same = std::ranges::unique(conversionsOfAction);
  conversionsOfAction.erase(same.begin(), same.end());
  for (const std::size_t each : conversionsOfAction) {
    owners.push_back(
        {static_cast<std::uint32_t>(actions.size()), static_cast<std::uint32_t>(each)});
  }
  actions.push_back(std::move(action));
}

}  // namespace soca
