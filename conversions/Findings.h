// The findings of the rules in the form for clients that show them.
#pragma once

#include <vector>

#include "conversions/Finding.h"
#include "service/PlannedClass.h"

namespace soca {

// One for each message of the class, in their order, with the places that are requested.
std::vector<Finding> describeFindings(const PlannedClass& planned, FindingPlacesType places);

}  // namespace soca
