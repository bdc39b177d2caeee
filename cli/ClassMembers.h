// The properties and methods that a class file declares.
#pragma once

#include <vector>

#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca::cli {

// Views are valid as long as the analysis that they were taken from.
struct DeclaredProperty {
  fl::ustring_view name;
  // Empty without one.
  fl::ustring_view defaultText;
  Extent extent;
};

struct DeclaredMethod {
  fl::ustring_view name;
  Extent nameExtent;
  Extent extent;
};

// In source order, those of all blocks. None if the file holds no class.
std::vector<DeclaredProperty> declaredProperties(const ca::AnalysisResult& analysis);
std::vector<DeclaredMethod> declaredMethods(const ca::AnalysisResult& analysis);

}  // namespace soca::cli
