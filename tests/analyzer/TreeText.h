// Syntax trees as short texts.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/AstDispatcher.h"
#include "platform/text/Conversions.h"

namespace ca {

// The direct children of one node, in the order of a walk.
class ChildCollector : public lf::astapi::Visitor<ChildCollector, astapi::CA, lf::astapi::Const> {
 public:
  static std::vector<const astapi::Node*> childrenOf(const astapi::Node& node) {
    ChildCollector collector;
    collector.parent_ = &node;
    collector(&node);
    return collector.children_;
  }

  bool enter(const astapi::Node& node) {
    if (&node == parent_) return true;
    children_.push_back(&node);
    return false;
  }

 private:
  const astapi::Node* parent_ = nullptr;
  std::vector<const astapi::Node*> children_;
};

// A node without children gives its own text; any other gives its kind with its children in
// parentheses. A statement that is an expression gives its contents and `;`, and an input argument
// gives only its contents.
inline std::string treeText(const AnalysisResult& analysis, const astapi::Node& node) {
  using lf::astapi::NodeKind;
  const auto children = ChildCollector::childrenOf(node);
  if (node.kind == NodeKind::InputArgument) return treeText(analysis, *children.front());
  if (node.kind == NodeKind::ExpressionStatement) {
    return treeText(analysis, *children.front()) + ';';
  }
  std::ostringstream text;
  const bool isList = node.kind == NodeKind::MatrixLiteral || node.kind == NodeKind::CellLiteral;
  if (children.empty() && !isList) {
    text << fl::i18n::to_string(analysis.nodeTextView(node));
    return text.str();
  }
  text << node.kind << '(';
  for (std::size_t index = 0; index < children.size(); ++index) {
    text << (index > 0 ? " " : "") << treeText(analysis, *children[index]);
  }
  text << ')';
  return text.str();
}

// The whole file, without the name of the root's kind.
inline std::string treeText(const AnalysisResult& analysis) {
  std::string text;
  for (const astapi::Node* child : ChildCollector::childrenOf(*analysis.getRootNode())) {
    text += (text.empty() ? "" : " | ") + treeText(analysis, *child);
  }
  return text;
}

// Each syntax error as "line:column: message", one-based.
inline std::string errorText(const AnalysisResult& analysis) {
  std::ostringstream text;
  for (const Diagnostic& diagnostic : analysis.diagnostics()) {
    text << (text.tellp() > 0 ? "\n" : "") << diagnostic.line + 1 << ':' << diagnostic.column + 1
         << ": " << diagnostic.message;
  }
  return text.str();
}

}  // namespace ca
