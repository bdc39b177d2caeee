// The rule families that the service runs.
#pragma once

#include <vector>

#include "soca/Updater.h"

namespace soca {

enum class RuleFamilyType { attributes, mixins, impl };

// The families that the mask selects, in the order in which they run on a class, whatever the order
// of the bits.
std::vector<RuleFamilyType> selectRuleFamilies(const UpdateMask& mask);

}  // namespace soca
