#include "rules/RuleFamilies.h"

#include <bit>

namespace soca {
namespace {

constexpr bool isTableInOrder() {
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < ruleFamilies.size(); ++i) {
    const RuleFamily& family = ruleFamilies[i];
    if (static_cast<std::size_t>(family.type) != i) return false;
    if (!std::has_single_bit(family.bit) || (mask & family.bit) != 0) return false;
    mask |= family.bit;
  }
  return true;
}
static_assert(isTableInOrder());

}  // namespace

std::vector<RuleFamilyType> selectRuleFamilies(std::uint64_t mask) {
  std::vector<RuleFamilyType> families;
  for (const RuleFamily& family : ruleFamilies) {
    if ((mask & family.bit) != 0) families.push_back(family.type);
  }
  return families;
}

}  // namespace soca
