// The comments that conversions delete.
#pragma once

#include <vector>

#include "conversions/risk/Risk.h"
#include "service/PlannedClass.h"

namespace soca {

// Adds a reason to the risk of each conversion that deletes comments, except those in methods that
// it deletes. The risks are those of all conversions of the plan in their order.
void findDeletedComments(const PlannedClass& planned, std::vector<ConversionRisk>& risks);

}  // namespace soca
