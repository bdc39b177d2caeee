#include "rules/RuleFamilies.h"

#include <algorithm>
#include <bit>

namespace soca {
namespace {

template <class Table>
constexpr bool isInOrder(const Table& table) {
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (static_cast<std::size_t>(table[i].type) != i) return false;
  }
  return true;
}
static_assert(isInOrder(ruleFamilies));
static_assert(isInOrder(conversionKinds));

constexpr bool hasEachABitOfItsOwn() {
  std::uint64_t mask = 0;
  for (const RuleFamily& family : ruleFamilies) {
    if (!std::has_single_bit(family.bit) || (mask & family.bit) != 0) return false;
    mask |= family.bit;
  }
  return true;
}
static_assert(hasEachABitOfItsOwn());

}  // namespace

RuleChoice::RuleChoice() {
  for (const RuleFamily& family : ruleFamilies) add(family.type);
}

RuleChoice RuleChoice::none() {
  RuleChoice choice;
  choice.families = 0;
  choice.kinds = {};
  return choice;
}

void RuleChoice::add(RuleFamilyType family) {
  for (const ConversionKind& kind : conversionKinds) {
    if (kind.family == family) add(kind.type);
  }
}

void RuleChoice::add(ConversionKindType kind) {
  families |= ruleFamily(conversionKind(kind).family).bit;
  kinds[kind] = true;
}

bool RuleChoice::hasWholeFamilies() const {
  return std::ranges::all_of(conversionKinds, [&](const ConversionKind& kind) {
    return kinds[kind.type] == ((families & ruleFamily(kind.family).bit) != 0);
  });
}

std::vector<RuleFamilyType> selectRuleFamilies(std::uint64_t mask) {
  std::vector<RuleFamilyType> families;
  for (const RuleFamily& family : ruleFamilies) {
    if ((mask & family.bit) != 0) families.push_back(family.type);
  }
  return families;
}

}  // namespace soca
