// The walk over all kinds of nodes, and over invalid trees.
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/tree/NodeVisitor.h"

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
