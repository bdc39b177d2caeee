#include "conversions/ClassMembers.h"

namespace soca {
namespace {

using lf::astapi::NodeKind;

// Calls `visit` with each member of the class's blocks of one kind, as a `Member`.
template <class Member, class Visit>
void visitMembers(const ca::AnalysisResult& analysis, NodeKind kind, const Visit& visit) {
  if (analysis.getClassdef() == nullptr) return;
  for (const ca::astapi::Node* block : analysis.getClassdef()->members) {
    if (block->kind != kind) continue;
    for (const ca::astapi::Node* member :
         static_cast<const ca::astapi::BlockNode*>(block)->members) {
      visit(static_cast<const Member&>(*member));
    }
  }
}

}  // namespace

std::vector<DeclaredProperty> declaredProperties(const ca::AnalysisResult& analysis) {
  std::vector<DeclaredProperty> properties;
  const auto add = [&](const ca::astapi::PropertyNode& node) {
    DeclaredProperty& property = properties.emplace_back();
    property.name = node.name->text.view();
    if (node.defaultValue != nullptr) {
      property.defaultText = analysis.nodeTextView(*node.defaultValue);
    }
    property.node = &node;
  };
  visitMembers<ca::astapi::PropertyNode>(analysis, NodeKind::PropertiesBlockNode, add);
  return properties;
}

std::vector<DeclaredMethod> declaredMethods(const ca::AnalysisResult& analysis) {
  std::vector<DeclaredMethod> methods;
  const auto add = [&](const ca::astapi::FunctionDeclaration& node) {
    methods.push_back({node.name->text.view(), &node});
  };
  visitMembers<ca::astapi::FunctionDeclaration>(analysis, NodeKind::MethodsBlockNode, add);
  return methods;
}

}  // namespace soca
