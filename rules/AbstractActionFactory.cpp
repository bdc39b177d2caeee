#include "rules/AbstractActionFactory.h"

#include <utility>

namespace soca {

std::size_t RuleResult::addConversion(const RuleConversion& conversion) {
  conversions.push_back(conversion);
  return conversions.size() - 1;
}

void RuleResult::addAction(std::unique_ptr<Action> action, std::size_t conversion) {
  actions.push_back(std::move(action));
  addOwner(conversion);
}

void RuleResult::addOwner(std::size_t conversion) {
  owners.push_back(
      {static_cast<std::uint32_t>(actions.size() - 1), static_cast<std::uint32_t>(conversion)});
}

}  // namespace soca
