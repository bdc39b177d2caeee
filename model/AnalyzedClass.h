// One loaded class: what is known of it, its syntax tree, and its model.
#pragma once

#include <memory>

#include "metadata/MetaClass.h"
#include "model/ClassDefinition.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca {

// Complete when it is made; no pointer is ever null. The model points at the analysis and at the
// description, so the fields must be destroyed from the last to the first.
struct AnalyzedClass {
  // As loading was asked for it.
  fl::ustring className;
  std::unique_ptr<MetaClass> metaClass;
  std::shared_ptr<ca::AnalysisResult> analysis;
  std::unique_ptr<ClassDefinition> definition;

  // The text of the class's file as the analysis holds it, every character kept.
  fl::ustring getSourceText() const;
  // The same without a copy, valid as long as the analysis.
  fl::ustring_view sourceTextView() const;
};

}  // namespace soca
