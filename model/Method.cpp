#include "model/Method.h"

#include <algorithm>
#include <variant>

#include "model/AnalyzerPositions.h"
#include "platform/analyzer/IdentifierSearch.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/failure/Terminate.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using ca::astapi::Identifier;
using ca::astapi::Node;
using ca::astapi::ReturnStatement;
using ca::astapi::StringId;
using lf::astapi::NodeKind;

constexpr std::uint64_t endKeywordLength = 3;

// The first and the last position of a subtree.
struct Span {
  std::uint64_t first = 0;
  std::uint64_t last = 0;

  explicit Span(const Node& node)
      : first(ca::astapi::getFirstPositionInSubtree(node)),
        last(ca::astapi::getLastPositionInSubtree(node)) {}

  bool contains(const Span& other) const { return first <= other.first && other.last <= last; }
};

// The functions that are statements of the body itself, without those inside other statements.
std::vector<Span> nestedFunctions(const ca::astapi::FunctionDefinition& function) {
  std::vector<Span> spans;
  for (const Node* statement : function.body()) {
    if (statement->kind == NodeKind::NestedFunction) spans.emplace_back(*statement);
  }
  return spans;
}

bool isIdentifier(const Node* node, const StringId& id) {
  return node->kind == NodeKind::Identifier && static_cast<const Identifier*>(node)->id == id;
}

// Whether the node is `name{1}`.
bool isFirstCell(const Node* node, const StringId& name) {
  if (node->kind != NodeKind::CellIndex) return false;
  const auto& index = static_cast<const ca::astapi::CellIndex&>(*node);
  if (!isIdentifier(index.base, name) || index.arguments.size() != 1) return false;
  const Node* argument = index.arguments.front();
  return argument->kind == NodeKind::NumberLiteral &&
         std::visit(lf::astapi::internal::IsOneVisitor(),
                    static_cast<const ca::astapi::NumberLiteral*>(argument)->value);
}

// Whether an assignment to the node sets the output of that name.
bool isOutput(const Node* target, const fl::ustring& outputName) {
  const StringId id(outputName);
  return isIdentifier(target, id) || (outputName == u"varargout" && isFirstCell(target, id));
}

// Whether the text contains the keyword, if only in a comment or a name.
bool mayReturn(fl::ustring_view text) {
  return fl::TextFinder(u"return").find(text) != fl::ustring_view::npos;
}

}  // namespace

bool Method::isFunctionDefinition() const { return node_->kind == NodeKind::FunctionDefinition; }

const ca::astapi::FunctionDefinition& Method::definition() const {
  if (!isFunctionDefinition()) {
    foundation::core::diag::terminate("Method without a body", "Method", __LINE__,
                                      static_cast<const char*>(__func__));
  }
  return static_cast<const ca::astapi::FunctionDefinition&>(*node_);
}

Extent Method::getFullExtent() const { return makeExtentOfNode(*context_->analysis, *node_); }

Extent Method::getNameExtent() const { return makeExtentOfNode(*context_->analysis, *node_->name); }

std::uint64_t Method::getNumberOfInputs() const { return definition().inputs.size(); }

std::uint64_t Method::getNumberOfOutputs() const { return definition().outputs.size(); }

fl::ustring Method::getOutputName(std::int32_t index) const {
  const Node* output = definition().outputs[static_cast<std::size_t>(index)];
  return static_cast<const Identifier*>(output)->text.getText();
}

Extent Method::getBodyExtent() const {
  const ca::astapi::FunctionDefinition& function = definition();
  const Extent full = getFullExtent();
  // One column before the `end`; wraps to the all-ones value before the first column.
  const SourcePosition end = {full.end.line, full.end.column - 1 - endKeywordLength};
  if (function.body().empty()) return {end, end};
  return {makeExtentOfNode(*context_->analysis, *function.body().front()).start, end};
}

bool Method::isSimpleConstantAssignment(const fl::ustring& outputName, bool& constant,
                                        SourcePosition& start, SourcePosition& end) const {
  const auto& body = definition().body();
  if (body.size() != 1 || body.front()->kind != NodeKind::SimpleAssignment) return false;
  const auto& assignment = static_cast<const ca::astapi::SimpleAssignment&>(*body.front());
  if (!isOutput(assignment.target, outputName)) return false;
  const bool isTrue = isIdentifier(assignment.value, StringId(u"true"));
  if (!isTrue && !isIdentifier(assignment.value, StringId(u"false"))) return false;
  const Extent extent = makeExtentOfNode(*context_->analysis, *assignment.value);
  constant = isTrue;
  start = extent.start;
  end = extent.end;
  return true;
}

std::vector<Extent> Method::findReturnStatements() const {
  const ca::astapi::FunctionDefinition& function = definition();
  std::vector<Extent> statements;
  if (!mayReturn(context_->analysis->nodeTextView(function))) return statements;
  const std::vector<Span> nested = nestedFunctions(function);
  ca::astapi::NodeVisitor<ReturnStatement> visitor([&](const ReturnStatement& statement) {
    const Span span(statement);
    const auto holdsIt = [&](const Span& other) { return other.contains(span); };
    if (std::ranges::any_of(nested, holdsIt)) return;
    statements.push_back(makeExtentOfNode(*context_->analysis, statement));
  });
  visitor(&function);
  return statements;
}

bool Method::isMethodReferencedInSysObj() const {
  const Identifier& ownName = *node_->name;
  bool isReferenced = false;
  ca::astapi::visitIdentifiers(context_->analysis->getRootNode(),
                               context_->analysis->sourceTextView(), ownName.text.view(),
                               [&](const Identifier& identifier) {
                                 isReferenced = identifier.position != ownName.position;
                                 return !isReferenced;
                               });
  return isReferenced;
}

}  // namespace soca
