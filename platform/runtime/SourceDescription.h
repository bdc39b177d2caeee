// The description of a class from its source.
#pragma once

#include <memory>
#include <string>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Describes the class in the analysed file; the description is empty if the file has no class. The
// analysis may have syntax errors: the description has what could be read.
std::shared_ptr<ClassDescription> describeAnalysis(const ca::AnalysisResult& analysis);

}  // namespace sotarn
