#include "fuzz/AnalysisProperties.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>

#include "fuzz/Violation.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/SourceAnalysis.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/runtime/SourceDescription.h"

namespace soca::fuzz {
namespace {

using ca::astapi::Node;
using lf::astapi::NodeKind;

std::size_t endOf(const Node& node) {
  // An empty subtree ends before its beginning, and wraps at the start of the text.
  return static_cast<std::uint32_t>(node.lastPosition + 1);
}

std::string describe(const Node& node) {
  return fmt::format("node of kind {} at {} to {}", static_cast<unsigned>(node.kind), node.position,
                     endOf(node));
}

// The children of one node at a time.
class Children : public ca::astapi::Visitor<Children, lf::astapi::Const> {
 public:
  const std::vector<const Node*>& of(const Node& node) {
    parent_ = &node;
    children_.clear();
    (*this)(&node);
    return children_;
  }

  bool enter(const Node& node) {
    if (&node == parent_) return true;
    children_.push_back(&node);
    return false;
  }

 private:
  const Node* parent_ = nullptr;
  std::vector<const Node*> children_;
};

// The kinds and extents of all nodes, in the order of a walk.
class Outline : public ca::astapi::Visitor<Outline, lf::astapi::Const> {
 public:
  explicit Outline(const ca::AnalysisResult& analysis) { (*this)(analysis.getRootNode()); }

  bool enter(const Node& node) {
    nodes.emplace_back(node.kind, node.position, node.lastPosition);
    return true;
  }

  std::vector<std::tuple<NodeKind, std::uint32_t, std::uint32_t>> nodes;
};

class TreeCheck {
 public:
  explicit TreeCheck(const ca::AnalysisResult& analysis)
      : analysis_(analysis), size_(analysis.sourceTextView().size()) {}

  // Not recursive, because a tree may be as deep as its text is long.
  void run() {
    pending_.push_back(analysis_.getRootNode());
    while (!pending_.empty()) {
      const Node& node = *pending_.back();
      pending_.pop_back();
      check(node);
    }
  }

  std::size_t identifiers() const { return identifiers_; }

 private:
  void check(const Node& node) {
    // Two nodes may share the placeholder of a missing expression.
    const bool isNew = seen_.insert(&node).second || node.kind == NodeKind::MissingExpression;
    require(isNew, "{} stands in the tree twice", describe(node));
    require(node.position <= endOf(node) && endOf(node) <= size_, "{} lies outside of the text",
            describe(node));
    if (node.kind == NodeKind::Identifier) checkIdentifier(node);
    auto children = children_.of(node);
    if (!analysis_.hasSyntaxError()) checkChildren(node, children);
    pending_.insert(pending_.end(), children.begin(), children.end());
  }

  void checkIdentifier(const Node& node) {
    ++identifiers_;
    const auto& identifier = static_cast<const ca::astapi::Identifier&>(node);
    const fl::ustring_view text = analysis_.nodeTextView(node);
    require(identifier.text.view() == text, "{} has another text than its place", describe(node));
    require(identifier.id.getString() == text, "{} has another id than its text", describe(node));
  }

  static void checkChildren(const Node& parent, std::vector<const Node*>& children) {
    std::ranges::sort(children, {}, &Node::position);
    std::size_t end = parent.position;
    for (const Node* child : children) {
      require(end <= child->position && endOf(*child) <= endOf(parent),
              "{} leaves its parent, {}, or runs into its sibling", describe(*child),
              describe(parent));
      end = endOf(*child);
    }
  }

  const ca::AnalysisResult& analysis_;
  std::size_t size_;
  Children children_;
  std::vector<const Node*> pending_;
  std::unordered_set<const Node*> seen_;
  std::size_t identifiers_ = 0;
};

void checkPositions(const ca::AnalysisResult& analysis, fl::ustring_view text) {
  std::uint64_t line = 1;
  std::uint64_t column = 1;
  for (std::size_t position = 0; position <= text.size(); ++position) {
    const auto found = analysis.getLineAndColumn(static_cast<std::uint32_t>(position));
    require(found == (column << 32U | line), "position {} becomes line {}, column {}", position,
            found & 0xFFFFFFFFU, found >> 32U);
    const bool isLineEnd = position < text.size() && text[position] == u'\n';
    line += isLineEnd ? 1 : 0;
    column = isLineEnd ? 1 : column + 1;
  }
}

void checkIdentifierWalk(const ca::AnalysisResult& analysis, std::size_t expected) {
  const auto identifiers = identifiersOf(analysis);
  require(identifiers.size() == expected, "the walk meets {} identifiers of {}", identifiers.size(),
          expected);
  const auto twice = std::ranges::adjacent_find(identifiers);
  require(analysis.hasSyntaxError() || twice == identifiers.end(),
          "the walk meets an identifier twice");
}

void checkDiagnostics(const ca::AnalysisResult& analysis, fl::ustring_view text) {
  const auto& diagnostics = analysis.diagnostics();
  require(analysis.hasSyntaxError() == !diagnostics.empty(), "a syntax error is not told of");
  const std::uint64_t end = analysis.getLineAndColumn(static_cast<std::uint32_t>(text.size()));
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  for (const ca::Diagnostic& diagnostic : diagnostics) {
    require(!diagnostic.message.empty(), "a syntax error has no text");
    const bool isOrdered = std::pair(line, column) <= std::pair<std::uint64_t, std::uint64_t>(
                                                          diagnostic.line, diagnostic.column);
    line = diagnostic.line;
    column = diagnostic.column;
    require(isOrdered, "a syntax error in line {} is told of too late", line + 1);
    require(line < (end & 0xFFFFFFFFU), "a syntax error lies behind the text");
  }
}

}  // namespace

std::vector<Stretch> identifiersOf(const ca::AnalysisResult& analysis) {
  std::vector<Stretch> found;
  ca::astapi::NodeVisitor<ca::astapi::Identifier> visitor(
      [&](const ca::astapi::Identifier& identifier) {
        found.push_back({identifier.position, identifier.text.view().size()});
      });
  visitor(analysis.getRootNode());
  std::ranges::sort(found);
  return found;
}

void checkAnalysis(const ca::AnalysisResult& analysis, fl::ustring_view text) {
  require(analysis.sourceTextView() == text, "the analysis has another text");
  require(analysis.getSubtreeText(*analysis.getRootNode()) == text, "the root has another text");
  checkPositions(analysis, text);
  checkDiagnostics(analysis, text);
  TreeCheck tree(analysis);
  tree.run();
  checkIdentifierWalk(analysis, tree.identifiers());
  require(sotarn::describeAnalysis(analysis) != nullptr, "the class is not described");
}

void checkSkipping(const ca::AnalysisResult& expected, const ca::KnownFunctions& known) {
  const ca::SourceAnalysis found(expected.sharedSourceText(), &known);
  const auto areSame = [](const ca::Diagnostic& left, const ca::Diagnostic& right) {
    return left.line == right.line && left.column == right.column && left.message == right.message;
  };
  require(std::ranges::equal(found.diagnostics(), expected.diagnostics(), areSame),
          "without the known functions there are other syntax errors");
  require(identifiersOf(found) == identifiersOf(expected), "skipped identifiers are lost");
  require(Outline(found).nodes == Outline(expected).nodes, "skipped functions have other nodes");
}

std::shared_ptr<ca::AnalysisResult> analyzeChecked(const fl::ustring& text) {
  std::shared_ptr<ca::AnalysisResult> analysis;
  try {
    analysis = ca::analyzeText(text);
  } catch (const ca::InvalidAnalysisException&) {
    return nullptr;
  }
  checkAnalysis(*analysis, text);
  return analysis;
}

}  // namespace soca::fuzz
