// The walk over all kinds of nodes, and over invalid trees.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <stdexcept>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/SourceAnalysis.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "tests/analyzer/TreeText.h"

namespace ca {
namespace {

using astapi::Identifier;
using astapi::NodeVisitor;
using lf::astapi::NodeKind;

class KindCollector : public lf::astapi::Visitor<KindCollector, astapi::CA, lf::astapi::Const> {
 public:
  bool enter(const astapi::Node& node) {
    kinds.insert(node.kind);
    return true;
  }
  std::set<NodeKind> kinds;
};

// One text with every construct of the language; to be extended for each new kind of node.
const char16_t everything[] =
    u"classdef (Sealed) A < B\n"
    u"properties\nx (1, :) double {mustBeX} = [1; 2]\nend\n"
    u"events\nE\nend\n"
    u"enumeration\nM(1)\nend\n"
    u"methods\ns(x)\n"
    u"function f(~)\narguments\nx\nend\n"
    u"function nested, return, end\n"
    u"x.y = a{1}; [a, ~] = b(:, end, Name = 2); -(a' + 1i); a.(b) = ?C; hold on\n"
    u"x = {'a', \"b\", @sin, @(x) 1:2}; step@B(x)\n"
    u"if a, elseif b, else, end\nfor k = 1, break, end\nwhile a, continue, end\n"
    u"switch a, case 1, otherwise, end\ntry, catch e, end\nspmd, end\nglobal g\npersistent p\n"
    u"end\nend\nend\n";

TEST(Walk, ReachesEveryKind) {
  std::set<NodeKind> all;
#define ADD_KIND(number, name) all.insert(NodeKind::name);
  LF_ASTAPI_NODE_KINDS(ADD_KIND)
#undef ADD_KIND
  KindCollector collector;
  const auto analysis = analyzeText(everything);
  EXPECT_FALSE(analysis->hasSyntaxError());
  collector(analysis->getRootNode());
  // Occurs only in place of a missing expression.
  const auto broken = analyzeText(u"x =");
  KindCollector gaps;
  gaps(broken->getRootNode());
  collector.kinds.merge(gaps.kinds);
  EXPECT_EQ(collector.kinds, all);
}

TEST(Walk, VisitsAFunctionFromItsNameToItsBody) {
  std::string names;
  NodeVisitor<Identifier> visitor([&](const Identifier& name) {
    for (const char16_t c : name.text.view()) names.push_back(static_cast<char>(c));
  });
  visitor(analyzeText(u"function o = n(i)\narguments\na\nend\nb\nend")->getRootNode());
  EXPECT_EQ(names, "nioab");
}

// The class with a method, a function after it, and something else.
fl::ustring classWith(const fl::ustring& property, const fl::ustring& method,
                      const fl::ustring& rest = u"function after\n[a b]';\nend\n") {
  return u"classdef A\nproperties\n" + property + u"\nend\nmethods\n" + method +
         u"\nfunction g(x)\narguments\nx\nend\nif x, y.z; end\nend\nend\nend\n" + rest;
}

std::size_t countSkipped(const AnalysisResult& analysis) {
  std::size_t count = 0;
  const auto add = [&](const astapi::Node* node) {
    if (node->kind != NodeKind::FunctionDefinition) return;
    if (static_cast<const astapi::FunctionDefinition*>(node)->reader != nullptr) ++count;
  };
  for (const auto* method : analysis.getClassdef()->getMethods()) add(method);
  for (const auto* each : static_cast<const astapi::ListNode*>(analysis.getRootNode())->elements) {
    add(each);
  }
  return count;
}

TEST(Walk, ReadsSkippedFunctionsWhenItReachesThem) {
  const fl::ustring method = u"function f\nx = {1, 'a'};\nend";
  const SourceAnalysis before(classWith(u"P", method));
  const struct {
    const char* shows;
    fl::ustring after;
    std::size_t skipped;
  } rows[] = {
      {"all is as before", classWith(u"P", method), 3},
      {"text before the functions", classWith(u"Longer (1, 1) = 2", method), 3},
      {"a name", classWith(u"P", u"function h\nx = {1, 'a'};\nend"), 2},
      {"a body", classWith(u"P", u"function f\nx = {1, 'b'};\nend"), 2},
      {"one function more", classWith(u"P", u"function h\nend\n" + method), 3},
      {"one function less", classWith(u"P", u"% none"), 2},
      {"an `end` that is longer", classWith(u"P", method + u"s\nend"), 2},
      {"a syntax error before", classWith(u"P = (", method), 3},
      {"a syntax error that swallows functions", classWith(u"P = {", method), 3},
      {"a syntax error in a function", classWith(u"P", u"function f\nx = {1, 'a;\nend"), 2},
      {"a comment that swallows functions", classWith(u"P", u"%{\n" + method), 0},
      {"no functions after the class", classWith(u"P", method, u""), 2},
  };
  const KnownFunctions known = before.knownFunctions();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.shows);
    const SourceAnalysis whole(row.after);
    const SourceAnalysis found(std::make_shared<const fl::ustring>(row.after), &known);
    EXPECT_EQ(countSkipped(found), row.skipped);
    EXPECT_EQ(treeText(found), treeText(whole));
    EXPECT_EQ(countSkipped(found), 0U);
    ASSERT_EQ(found.diagnostics().size(), whole.diagnostics().size());
    for (std::size_t i = 0; i < found.diagnostics().size(); ++i) {
      EXPECT_EQ(found.diagnostics()[i].message, whole.diagnostics()[i].message);
    }
  }
}

TEST(Walk, RefusesBrokenTrees) {
  NodeVisitor<Identifier> visitor([](const Identifier&) {});
  const auto messageFor = [&](const astapi::Node& node) -> std::string {
    try {
      visitor(&node);
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return "";
  };
  astapi::Node node;
  for (const int kind : {0, 67, 255}) {
    node.kind = static_cast<NodeKind>(kind);
    EXPECT_EQ(messageFor(node), "Unhandled node kind encountered in AstDispatcher") << kind;
  }
  astapi::InputArgument input;
  input.kind = NodeKind::InputArgument;
  EXPECT_EQ(messageFor(input), "InputArgument has neither an Identifier nor an Ignored");
}

}  // namespace
}  // namespace ca
