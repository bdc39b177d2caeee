// The risks of renaming and deleting methods.
#pragma once

#include <vector>

#include "conversions/risk/Risk.h"
#include "service/PlannedClass.h"

namespace soca {

// Each adds its reasons to the risks, which are those of all conversions of the plan in their
// order.

// References to a method that is renamed or deleted, and an old method in the class that would take
// the place of a deleted one.
void judgeMethods(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

// Calls whose results are negated: the function called may change its meaning too.
void findNegatedCalls(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

}  // namespace soca
