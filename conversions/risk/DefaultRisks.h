// The default values that a new declaration does not accept.
#pragma once

#include <vector>

#include "conversions/risk/Risk.h"
#include "rules/RuleConversion.h"
#include "service/PlannedClass.h"

namespace soca {

// Adds the reasons to the risks, which are those of all conversions of the plan in their order, and
// sets whether their default values are known.
void judgeDefaults(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

}  // namespace soca
