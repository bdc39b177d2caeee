// The walk over a syntax tree.
#pragma once

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "platform/analyzer/tree/Ast.h"

namespace lf::astapi {

// Template argument: the walk passes nodes as const.
struct Const {};

// Walks a tree depth first and passes every node to `Derived::enter`, which returns whether to
// visit the node's children. Children come in the order that Ast.h gives for each node type; null
// children are skipped. The nodes still to be visited are kept on the heap, so that a deep
// tree does not exhaust the stack.
//
// Throws std::logic_error for a node whose kind is no enumerator of NodeKind, and for an
// InputArgument with neither child.
template <class Derived, class Tag, class Constness, class Result>
class AstDispatcher {
 public:
  Result operator()(const Node<Tag>* root) {
    pending_.clear();
    push(root);
    while (!pending_.empty()) {
      const Node<Tag>* node = pending_.back();
      pending_.pop_back();
      if (!static_cast<Derived&>(*this).enter(*node)) continue;
      const std::size_t firstChild = pending_.size();
      pushChildren(*node);
      std::reverse(pending_.begin() + static_cast<std::ptrdiff_t>(firstChild), pending_.end());
    }
  }

 private:
  void push(const Node<Tag>* node) {
    if (node != nullptr) pending_.push_back(node);
  }

  template <class T>
  void push(const NodeList<T>& nodes) {
    pending_.insert(pending_.end(), nodes.begin(), nodes.end());
  }

  template <class... Children>
  void pushAll(const Children&... children) {
    (push(children), ...);
  }

  // The node as the type of its kind, which the caller has checked.
  template <template <class> class NodeType>
  static const NodeType<Tag>& as(const Node<Tag>& node) {
    return static_cast<const NodeType<Tag>&>(node);
  }

  void pushChildren(const Node<Tag>& node) {
    switch (static_cast<unsigned>(node.kind)) {
      // Leaves.
      case 2:
      case 7:
      case 10:
      case 14:
      case 16:
      case 19:
      case 20:
      case 21:
      case 26:
      case 27:
      case 33:
      case 37:
      case 39:
      case 48:
      case 58:
      case 61:
        return;
      case 1:
        return pushAll(as<AnonymousFunction>(node).inputs, as<AnonymousFunction>(node).body);
      case 3:
        return pushDeclaration(as<ArgumentDeclaration>(node));
      case 4:
        return pushAll(as<ArgumentsBlock>(node).declarations, as<ArgumentsBlock>(node).attributes);
      case 5:
        return pushAll(as<SimpleAssignment>(node).target, as<SimpleAssignment>(node).value);
      case 6:
        return pushAll(as<Attribute>(node).name, as<Attribute>(node).value);
      case 8:
      case 22:
      case 23:
      case 47:
        return pushAll(as<PairNode>(node).left, as<PairNode>(node).right);
      case 9:
      case 29:
      case 50:
        return pushAll(as<ApplyNode>(node).base, as<ApplyNode>(node).arguments);
      case 11:
      case 25:
      case 66:
        return pushAll(as<ConditionalBody>(node).condition, as<ConditionalBody>(node).body);
      case 12:
        return pushAll(as<CatchClause>(node).identifier, as<CatchClause>(node).body);
      case 13:
      case 24:
      case 36:
      case 40:
      case 42:
      case 49:
      case 53:
      case 55:
      case 59:
        return push(as<ListNode>(node).elements);
      case 15:
        return pushClassdef(as<Classdef>(node));
      case 17:
        return pushAll(as<Range>(node).start, as<Range>(node).step, as<Range>(node).stop);
      case 18:
        return pushAll(as<CommandStatement>(node).name, as<CommandStatement>(node).words);
      case 28:
      case 31:
      case 45:
      case 56:
        return pushAll(as<BlockNode>(node).members, as<BlockNode>(node).attributes);
      case 30:
      case 32:
      case 51:
      case 54:
        return push(as<WrapperNode>(node).operand);
      case 34:
        return pushSuperclassCall(as<SuperclassCall>(node));
      case 35:
      case 44:
        return pushFunction(as<FunctionDefinition>(node));
      case 38:
        return pushIf(as<IfStatement>(node));
      case 41:
        return pushInput(as<InputArgument>(node));
      case 43:
        return pushSignature(as<FunctionDeclaration>(node));
      case 46:
        return pushAll(as<MultipleAssignment>(node).targets, as<MultipleAssignment>(node).value);
      case 52:
        return pushFor(as<ForStatement>(node));
      case 57:
        return pushDeclaration(as<PropertyNode>(node));
      case 60:
        return pushAll(as<SpmdStatement>(node).arguments, as<SpmdStatement>(node).body);
      case 62:
        return pushSwitch(as<SwitchStatement>(node));
      case 63:
        return pushAll(as<TryStatement>(node).body, as<TryStatement>(node).catchClause);
      case 64:
        return push(as<UnaryOperation>(node).operand);
      case 65:
        return pushValidation(as<ValidationNode>(node));
      default:
        failOnUnknownKind(node.kind);
    }
  }

  template <class Declaration>
  void pushDeclaration(const Declaration& node) {
    pushAll(node.name, node.validation, node.defaultValue);
  }
  void pushClassdef(const Classdef<Tag>& node) {
    pushAll(node.attributes, node.name, node.superClasses, node.members);
  }
  void pushSuperclassCall(const SuperclassCall<Tag>& node) {
    pushAll(node.method, node.superClass, node.arguments);
  }
  void pushSignature(const FunctionDeclaration<Tag>& node) {
    pushAll(node.name, node.inputs, node.outputs);
  }
  void pushFunction(const FunctionDefinition<Tag>& node) {
    pushSignature(node);
    pushAll(node.argumentBlocks(), node.body());
  }
  void pushIf(const IfStatement<Tag>& node) {
    pushAll(node.condition, node.body, node.elseIfs, node.otherwise);
  }
  void pushFor(const ForStatement<Tag>& node) {
    pushAll(node.variable, node.range, node.limit, node.body);
  }
  void pushSwitch(const SwitchStatement<Tag>& node) {
    pushAll(node.subject, node.cases, node.otherwise);
  }
  void pushValidation(const ValidationNode<Tag>& node) {
    pushAll(node.size, node.className, node.validators);
  }
  void pushInput(const InputArgument<Tag>& node) {
    if (node.identifier == nullptr && node.ignored == nullptr) {
      throw std::logic_error("InputArgument has neither an Identifier nor an Ignored");
    }
    push(node.identifier != nullptr ? node.identifier : node.ignored);
  }

  [[noreturn]] static void failOnUnknownKind(NodeKind kind) {
    // The text with the kind is only for a debugger; the text of the exception is fixed.
    std::ostringstream text;
    text << "Unhandled node kind \"" << kind << "\" encountered in AstDispatcher.";
    throw std::logic_error("Unhandled node kind encountered in AstDispatcher");
  }

  std::vector<const Node<Tag>*> pending_;
};

// A walk that visits every node; a derived class may define `enter` to skip subtrees.
template <class Derived, class Tag, class Constness>
class Visitor : public AstDispatcher<Derived, Tag, Constness, void> {
 public:
  bool enter(const Node<Tag>&) { return true; }
};

}  // namespace lf::astapi
