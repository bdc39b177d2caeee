// One loaded class: its description, its syntax tree, and its model.
#pragma once

#include <memory>

#include "metadata/MetaClass.h"
#include "model/ClassDefinition.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca {

// Complete once constructed; no pointer is null. The model points to the analysis and to the
// description, so the fields must be destroyed from the last to the first.
struct AnalyzedClass {
  // The name with which the class was loaded.
  fl::ustring className;
  std::unique_ptr<MetaClass> metaClass;
  std::shared_ptr<ca::AnalysisResult> analysis;
  std::unique_ptr<ClassDefinition> definition;

  // The text of the class's file from the analysis, with every character.
  fl::ustring getSourceText() const;
  // The same without a copy, valid as long as the analysis.
  fl::ustring_view sourceTextView() const;
};

}  // namespace soca
