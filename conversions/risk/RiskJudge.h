// Judges how far the results of the conversions of a class can be trusted.
#pragma once

#include <vector>

#include "conversions/risk/Risk.h"
#include "service/PlannedClass.h"

namespace soca {

// The risk of each conversion of the class, in their order, from the class itself and from what the
// class runtime knows of its superclasses. The plan must have the actions of all conversions, which
// need not be applied, and the analysis. Must run under the same files, overlay texts and class
// table as the plan. Throws fl::filesystem::ReadError if the file of a superclass cannot be read.
std::vector<ConversionRisk> judgeRisks(const PlannedClass& planned);

}  // namespace soca
