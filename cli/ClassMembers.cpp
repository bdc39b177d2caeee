#include "cli/ClassMembers.h"

namespace soca::cli {

std::vector<DeclaredProperty> declaredProperties(const ca::AnalysisResult& analysis) {
  std::vector<DeclaredProperty> properties;
  if (analysis.getClassdef() == nullptr) return properties;
  for (const auto* block : analysis.getClassdef()->getPropertiesBlocks()) {
    for (const ca::astapi::Node* member : block->members) {
      const auto& node = static_cast<const ca::astapi::PropertyNode&>(*member);
      DeclaredProperty& property = properties.emplace_back();
      property.name = node.name->text.view();
      if (node.defaultValue != nullptr) {
        property.defaultText = analysis.nodeTextView(*node.defaultValue);
      }
      property.node = &node;
    }
  }
  return properties;
}

std::vector<DeclaredMethod> declaredMethods(const ca::AnalysisResult& analysis) {
  std::vector<DeclaredMethod> methods;
  if (analysis.getClassdef() == nullptr) return methods;
  for (const auto* node : analysis.getClassdef()->getMethods()) {
    methods.push_back({node->name->text.view(), node});
  }
  return methods;
}

}  // namespace soca::cli
