#include "service/RuleFamily.h"

#include <array>

namespace soca {
namespace {

struct MaskBit {
  UpdateMask bit;
  RuleFamilyType family;
};

// In running order.
constexpr std::array<MaskBit, 3> maskBits = {{
    {2, RuleFamilyType::attributes},
    {1, RuleFamilyType::mixins},
    {4, RuleFamilyType::impl},
}};

}  // namespace

std::vector<RuleFamilyType> selectRuleFamilies(const UpdateMask& mask) {
  std::vector<RuleFamilyType> families;
  for (const MaskBit& maskBit : maskBits) {
    if ((mask & maskBit.bit) != 0) families.push_back(maskBit.family);
  }
  return families;
}

}  // namespace soca
