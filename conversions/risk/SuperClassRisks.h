// The risks of conversions that depend on superclasses.
#pragma once

#include <vector>

#include "conversions/risk/Risk.h"
#include "service/PlannedClass.h"

namespace soca {

// Each adds its reasons to the risks, one for each conversion of the plan in their order.

// A superclass that was not found, was read only in part, or has a method that its own update would
// rename to one that is deleted here.
void judgeSuperClasses(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

// `velum.System`, beside another superclass.
void findAddedSystemBase(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

}  // namespace soca
