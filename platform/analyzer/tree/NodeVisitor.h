// A walk that calls a function with every node of one type.
#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include "platform/analyzer/tree/AstDispatcher.h"

namespace ca::astapi {

// A walk over the analyzer's own trees.
template <class Derived, class Constness>
class Visitor : public lf::astapi::Visitor<Derived, CA, Constness> {};

// Calls a function with every node of type `T`, which is Identifier or ReturnStatement. An empty
// function throws std::bad_function_call at the first such node.
//
//   NodeVisitor<Identifier> visitor([&](const Identifier& name) { ... });
//   visitor(analysis.getRootNode());
template <class T>
class NodeVisitor : public Visitor<NodeVisitor<T>, lf::astapi::Const> {
  static_assert(std::is_same_v<T, Identifier> || std::is_same_v<T, ReturnStatement>);

 public:
  explicit NodeVisitor(std::function<void(const T&)> function) : function_(std::move(function)) {}
  NodeVisitor(const NodeVisitor&) = default;
  NodeVisitor& operator=(const NodeVisitor&) = default;
  virtual ~NodeVisitor() = default;

  bool enter(const Node& node) {
    constexpr auto visitedKind = std::is_same_v<T, Identifier>
                                     ? lf::astapi::NodeKind::Identifier
                                     : lf::astapi::NodeKind::ReturnStatement;
    if (node.kind != visitedKind) return true;
    function_(static_cast<const T&>(node));
    return false;
  }

 private:
  std::function<void(const T&)> function_;
};

}  // namespace ca::astapi
