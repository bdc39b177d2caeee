// What a class file says of its class.
#pragma once

#include <memory>
#include <string>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Describes the class that the analysed file holds; a file without one gives a description with
// nothing in it. The analysis may have syntax errors: what could be read counts.
std::shared_ptr<ClassDescription> describeAnalysis(const ca::AnalysisResult& analysis);

}  // namespace sotarn
