// The properties and methods that a class file declares.
#pragma once

#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/text/UString.h"

namespace soca {

// Valid as long as the analysis from which they were read.
struct DeclaredProperty {
  fl::ustring_view name;
  // Empty if there is none.
  fl::ustring_view defaultText;
  const ca::astapi::PropertyNode* node = nullptr;
};

struct DeclaredMethod {
  fl::ustring_view name;
  const ca::astapi::FunctionDeclaration* node = nullptr;

  fl::ustring_view nameView() const { return name; }
};

// Those of all blocks, in source order. Empty if the file has no class.
std::vector<DeclaredProperty> declaredProperties(const ca::AnalysisResult& analysis);
std::vector<DeclaredMethod> declaredMethods(const ca::AnalysisResult& analysis);

}  // namespace soca
