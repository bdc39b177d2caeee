// The properties and methods that a class file declares.
#pragma once

#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/text/UString.h"

namespace soca {

// Valid as long as the analysis that they were taken from.
struct DeclaredProperty {
  fl::ustring_view name;
  // Empty without one.
  fl::ustring_view defaultText;
  const ca::astapi::PropertyNode* node = nullptr;
};

struct DeclaredMethod {
  fl::ustring_view name;
  const ca::astapi::FunctionDeclaration* node = nullptr;

  fl::ustring_view nameView() const { return name; }
};

// In source order, those of all blocks. None if the file holds no class.
std::vector<DeclaredProperty> declaredProperties(const ca::AnalysisResult& analysis);
std::vector<DeclaredMethod> declaredMethods(const ca::AnalysisResult& analysis);

}  // namespace soca
