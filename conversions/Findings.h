// The findings of the rules in the form for clients that show them.
#pragma once

#include <vector>

#include "conversions/Finding.h"
#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"
#include "service/PlannedClass.h"

namespace soca {

// One for each message of the class, in their order, with the places that are requested.
std::vector<Finding> describeFindings(const PlannedClass& planned, FindingPlacesType places);

LinePlace placeOf(const Extent& extent);
LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name);

}  // namespace soca
