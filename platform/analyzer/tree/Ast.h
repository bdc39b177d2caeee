// The syntax tree. Nodes live in the arena of their analysis result, which owns all of them and
// frees them together; every pointer in a node refers to a node of the same tree. A complete tree
// is read-only and may be read by several threads.
//
// The comment of each node type gives its meaning and its children in the order of a walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/analyzer/lexer/NumericValue.h"
#include "platform/analyzer/text/SourceText.h"
#include "platform/analyzer/tree/BodyReader.h"
#include "platform/analyzer/tree/NodeKind.h"
#include "platform/analyzer/tree/NodeList.h"

namespace ca::astapi {

// The tag of the analyzer's trees.
struct CA {};

}  // namespace ca::astapi

namespace lf::astapi {

// The base of all nodes. Positions are indices of UTF-16 code units in the analysed text.
template <class Tag>
struct Node {
  // The first character of the subtree.
  std::uint32_t position = 0;
  NodeKind kind{};
  // The last character of the subtree; for an empty subtree the one before `position`.
  std::uint32_t lastPosition = 0;
};

// A pair of brackets, by the positions of the two characters.
struct BracketPair {
  std::uint32_t opening = 0;
  std::uint32_t closing = 0;

  // Packed as first position in the low half and last position in the high half.
  std::uint64_t packed() const {
    return static_cast<std::uint64_t>(closing) << 32U | static_cast<std::uint64_t>(opening);
  }
};

// Operations on a node type that need only the fields of the node.
template <class NodeType>
struct NodeCustomization;

// --- names and literals ---

// A name. A dotted name of a superclass, a validation class or a class query is one identifier with
// the whole text.
template <class Tag>
struct Identifier : Node<Tag> {
  ca::astapi::SourceText text;
  ca::astapi::StringId id;
};

template <class Tag>
struct NumberLiteral : Node<Tag> {
  ca::astapi::SourceText text;
  NumericValue<Tag> value;
};

// `'...'`; `text` keeps the quotes. The optional child is always null.
template <class Tag>
struct CharLiteral : Node<Tag> {
  ca::astapi::SourceText text;
};

// `"..."`, in the same shape.
template <class Tag>
struct StringLiteral : CharLiteral<Tag> {};

// A node without children: `break`, `continue`, `return`, a bare `:`, `end` in an index, an ignored
// `~`, a word of a command, and the placeholder of a missing expression.
template <class Tag>
struct Leaf : Node<Tag> {};

template <class Tag>
struct ReturnStatement : Leaf<Tag> {};

// --- node types that several kinds share ---

// `[...]` (MatrixLiteral) and `{...}` (CellLiteral) hold rows, a row (ListRow) its elements;
// `@name` (FunctionHandle) the words of the name; `global` and `persistent` their names; `else`
// (ElseClause) and `otherwise` (OtherwiseClause) statements; the whole file (SourceText) its class,
// functions and statements. Children: `elements`.
template <class Tag>
struct ListNode : Node<Tag> {
  NodeList<Node<Tag>> elements;
};

// `(e)` (Parenthesized), an expression as a statement (ExpressionStatement), `?name` (ClassQuery),
// an event (Event). Children: `operand`.
template <class Tag>
struct WrapperNode : Node<Tag> {
  const Node<Tag>* operand = nullptr;
};

// A prefix operator, or a transpose after its operand. Children: `operand`.
template <class Tag>
struct UnaryOperation : Node<Tag> {
  const Node<Tag>* operand = nullptr;
  bool isPrefix = false;
};

// BinaryOperation; `base.name` (FieldReference), `base.(expression)` (DynamicField), `name = value`
// as an argument (NamedArgument). Children: `left`, `right`.
template <class Tag>
struct PairNode : Node<Tag> {
  const Node<Tag>* left = nullptr;
  const Node<Tag>* right = nullptr;
};

// `start:stop` or `start:step:stop`. Children: `start`, `step` if present, `stop`.
template <class Tag>
struct Range : Node<Tag> {
  const Node<Tag>* start = nullptr;
  const Node<Tag>* step = nullptr;
  const Node<Tag>* stop = nullptr;
};

// --- suffixes of a primary ---

// A base with arguments. Children: `base`, `arguments`.
template <class Tag>
struct ApplyNode : Node<Tag> {
  const Node<Tag>* base = nullptr;
  NodeList<Node<Tag>> arguments;
};

// `base(arguments)`
template <class Tag>
struct CallOrIndex : ApplyNode<Tag> {};

// `base{arguments}`
template <class Tag>
struct CellIndex : ApplyNode<Tag> {};

// `Name` or `Name(arguments)` in an enumeration block.
template <class Tag>
struct EnumerationMember : ApplyNode<Tag> {};

// `method@pkg.Base(arguments)`. Children: `method`, `superClass`, `arguments`.
template <class Tag>
struct SuperclassCall : Node<Tag> {
  const Node<Tag>* method = nullptr;
  const Identifier<Tag>* superClass = nullptr;
  NodeList<Node<Tag>> arguments;
};

// --- functions ---

// `name` or `~` in an input list; exactly one of the two is present.
template <class Tag>
struct InputArgument : Node<Tag> {
  const Node<Tag>* identifier = nullptr;
  const Node<Tag>* ignored = nullptr;
};

// `@(inputs) body`. Children: `inputs`, `body`.
template <class Tag>
struct AnonymousFunction : Node<Tag> {
  NodeList<Node<Tag>> inputs;
  const Node<Tag>* body = nullptr;
};

// A signature without a body. Children: `name`, `inputs`, `outputs`.
template <class Tag>
struct FunctionDeclaration : Node<Tag> {
  NodeList<Node<Tag>> outputs;
  // An accessor's name, `get.Name` or `set.Name`, is one identifier.
  const Identifier<Tag>* name = nullptr;
  NodeList<Node<Tag>> inputs;
};

// `function outputs = name(inputs) ... end`, from the keyword through `end`; a nested function
// (NestedFunction) has the same shape. Children: `name`, `inputs`, `outputs`, `argumentBlocks`,
// `body`.
template <class Tag>
struct FunctionDefinition : FunctionDeclaration<Tag> {
  using Reader = BodyReader<Tag>;
  // These parse the function if the parser skipped it.
  const NodeList<Node<Tag>>& argumentBlocks() const { return Reader::complete(*this).arguments; }
  const NodeList<Node<Tag>>& body() const { return Reader::complete(*this).statements; }

  // For the parser; empty until the function is complete.
  NodeList<Node<Tag>> arguments;
  NodeList<Node<Tag>> statements;
  // Null for a complete function.
  SkippedBody<Tag> reader = nullptr;
};

// --- statements ---

// `target = value`. Children: `target`, `value`.
template <class Tag>
struct SimpleAssignment : Node<Tag> {
  const Node<Tag>* target = nullptr;
  const Node<Tag>* value = nullptr;
};

// `[targets] = value`. Children: `targets`, `value`.
template <class Tag>
struct MultipleAssignment : Node<Tag> {
  NodeList<Node<Tag>> targets;
  const Node<Tag>* value = nullptr;
};

// A name and the words after it. Children: `name`, `words` (leaves).
template <class Tag>
struct CommandStatement : Node<Tag> {
  const Node<Tag>* name = nullptr;
  NodeList<Node<Tag>> words;
};

// `elseif` (ElseIfClause), `case` (CaseClause), `while` (WhileStatement). Children: `condition`,
// `body`.
template <class Tag>
struct ConditionalBody : Node<Tag> {
  const Node<Tag>* condition = nullptr;
  NodeList<Node<Tag>> body;
};

// Children: `condition`, `body`, `elseIfs`, `otherwise` if present.
template <class Tag>
struct IfStatement : Node<Tag> {
  const Node<Tag>* condition = nullptr;
  NodeList<Node<Tag>> body;
  NodeList<Node<Tag>> elseIfs;
  const Node<Tag>* otherwise = nullptr;
};

// `for` and `parfor`. Children: `variable`, `range`, `limit` (of at most one), `body`.
template <class Tag>
struct ForStatement : Node<Tag> {
  const Node<Tag>* variable = nullptr;
  const Node<Tag>* range = nullptr;
  NodeList<Node<Tag>> body;
  NodeList<Node<Tag>> limit;
};

// Children: `subject`, `cases`, `otherwise` if present.
template <class Tag>
struct SwitchStatement : Node<Tag> {
  const Node<Tag>* subject = nullptr;
  NodeList<Node<Tag>> cases;
  const Node<Tag>* otherwise = nullptr;
};

// Children: `identifier` if present, `body`.
template <class Tag>
struct CatchClause : Node<Tag> {
  const Node<Tag>* identifier = nullptr;
  NodeList<Node<Tag>> body;
};

// Children: `body`, `catchClause` if present.
template <class Tag>
struct TryStatement : Node<Tag> {
  NodeList<Node<Tag>> body;
  const Node<Tag>* catchClause = nullptr;
};

// Children: `arguments`, `body`.
template <class Tag>
struct SpmdStatement : Node<Tag> {
  NodeList<Node<Tag>> arguments;
  NodeList<Node<Tag>> body;
};

// --- the class and its blocks ---

template <class Tag>
struct Attribute;

template <class Tag>
struct NodeCustomization<Attribute<Tag>> {
  // Whether the attribute states that logical value: a bare name states true, one with `~` states
  // false, and one with the value `true` or `false` states that value. Any other value states
  // neither.
  bool isAttributeWithGivenLogicalValue(bool value) const;
};

// `Name`, `~Name` or `Name = value`. Children: `name`, `value` if present.
template <class Tag>
struct Attribute : Node<Tag>, NodeCustomization<Attribute<Tag>> {
  const Identifier<Tag>* name = nullptr;
  const Node<Tag>* value = nullptr;
  bool negated = false;
};

// The part of a property between its name and its default value: size, class and validators.
// Children: `size`, `className` if present, `validators`.
template <class Tag>
struct ValidationNode : Node<Tag> {
  std::optional<BracketPair> sizeParentheses;
  std::optional<BracketPair> validatorBraces;
  NodeList<Node<Tag>> size;
  const Identifier<Tag>* className = nullptr;
  // Each is an identifier, a chain of fields, or a call of either.
  NodeList<Node<Tag>> validators;
};

// One property. It ends with the last part that is present; its terminator belongs to the block.
// Children: `name`, `validation` and `defaultValue` if present.
template <class Tag>
struct PropertyNode : Node<Tag> {
  const Identifier<Tag>* name = nullptr;
  const ValidationNode<Tag>* validation = nullptr;
  const Node<Tag>* defaultValue = nullptr;
};

// One argument of an argument block; its name may be a chain of fields. Children: `name`,
// `validation` and `defaultValue` if present.
template <class Tag>
struct ArgumentDeclaration : Node<Tag> {
  const Node<Tag>* name = nullptr;
  const ValidationNode<Tag>* validation = nullptr;
  const Node<Tag>* defaultValue = nullptr;
};

// `arguments (attributes) ... end`. Children: `declarations`, `attributes`.
template <class Tag>
struct ArgumentsBlock : Node<Tag> {
  NodeList<Node<Tag>> declarations;
  NodeList<Attribute<Tag>> attributes;
};

// A block of a class body, from the keyword through `end`. Children: `members`, `attributes`.
template <class Tag>
struct BlockNode : Node<Tag> {
  ca::astapi::ClosingPosition closing;
  // The brackets of the attribute list; undefined if there are no attributes.
  std::uint32_t openingParenthesis = 0;
  std::uint32_t closingParenthesis = 0;
  NodeList<Attribute<Tag>> attributes;
  NodeList<Node<Tag>> members;
};

// Its members are PropertyNodes.
template <class Tag>
struct PropertiesBlockNode : BlockNode<Tag> {};

// Its members are FunctionDefinitions and FunctionDeclarations.
template <class Tag>
struct MethodsBlockNode : BlockNode<Tag> {};

template <class Tag>
struct Classdef;

template <class Tag>
struct NodeCustomization<Classdef<Tag>> {
  // The blocks of the class body, in source order.
  std::vector<const PropertiesBlockNode<Tag>*> getPropertiesBlocks() const;
  std::vector<const MethodsBlockNode<Tag>*> getMethodsBlocks() const;
  // All functions of all methods blocks, signatures included, in source order.
  std::vector<const FunctionDeclaration<Tag>*> getMethods() const;
};

// `classdef (attributes) name < superClasses ... end`. Children: `attributes`, `name`,
// `superClasses`, `members`.
template <class Tag>
struct Classdef : Node<Tag>, NodeCustomization<Classdef<Tag>> {
  NodeList<Attribute<Tag>> attributes;
  // Null when the name could not be read.
  const Node<Tag>* name = nullptr;
  // Each has its whole dotted name as text and id.
  NodeList<Identifier<Tag>> superClasses;
  // The blocks, all of them BlockNodes.
  NodeList<Node<Tag>> members;
};

// --- the operations of the customised nodes ---

template <class Tag>
bool NodeCustomization<Attribute<Tag>>::isAttributeWithGivenLogicalValue(bool value) const {
  const auto& attribute = static_cast<const Attribute<Tag>&>(*this);
  if (attribute.value == nullptr) return attribute.negated != value;
  if (attribute.value->kind != NodeKind::Identifier) return false;
  const auto text = static_cast<const Identifier<Tag>*>(attribute.value)->text.view();
  return text == (value ? fl::ustring_view(u"true") : fl::ustring_view(u"false"));
}

namespace internal {

// The members of the class body that are of kind `kind`, as `Block`.
template <class Block, class Tag>
std::vector<const Block*> blocksOfKind(const Classdef<Tag>& classdef, NodeKind kind) {
  std::vector<const Block*> blocks;
  blocks.reserve(classdef.members.size());
  for (const Node<Tag>* member : classdef.members) {
    if (member->kind == kind) blocks.push_back(static_cast<const Block*>(member));
  }
  return blocks;
}

}  // namespace internal

template <class Tag>
std::vector<const PropertiesBlockNode<Tag>*> NodeCustomization<Classdef<Tag>>::getPropertiesBlocks()
    const {
  return internal::blocksOfKind<PropertiesBlockNode<Tag>>(static_cast<const Classdef<Tag>&>(*this),
                                                          NodeKind::PropertiesBlockNode);
}

template <class Tag>
std::vector<const MethodsBlockNode<Tag>*> NodeCustomization<Classdef<Tag>>::getMethodsBlocks()
    const {
  return internal::blocksOfKind<MethodsBlockNode<Tag>>(static_cast<const Classdef<Tag>&>(*this),
                                                       NodeKind::MethodsBlockNode);
}

template <class Tag>
std::vector<const FunctionDeclaration<Tag>*> NodeCustomization<Classdef<Tag>>::getMethods() const {
  std::vector<const FunctionDeclaration<Tag>*> methods;
  const auto blocks = getMethodsBlocks();
  std::size_t count = 0;
  for (const MethodsBlockNode<Tag>* block : blocks) count += block->members.size();
  methods.reserve(count);
  for (const MethodsBlockNode<Tag>* block : blocks) {
    for (const Node<Tag>* member : block->members) {
      methods.push_back(static_cast<const FunctionDeclaration<Tag>*>(member));
    }
  }
  return methods;
}

}  // namespace lf::astapi

namespace ca::astapi {

// The nodes of the analyzer's trees.
using Node = lf::astapi::Node<CA>;
using Identifier = lf::astapi::Identifier<CA>;
using NumberLiteral = lf::astapi::NumberLiteral<CA>;
using CharLiteral = lf::astapi::CharLiteral<CA>;
using StringLiteral = lf::astapi::StringLiteral<CA>;
using Leaf = lf::astapi::Leaf<CA>;
using ReturnStatement = lf::astapi::ReturnStatement<CA>;
using ListNode = lf::astapi::ListNode<CA>;
using WrapperNode = lf::astapi::WrapperNode<CA>;
using UnaryOperation = lf::astapi::UnaryOperation<CA>;
using PairNode = lf::astapi::PairNode<CA>;
using Range = lf::astapi::Range<CA>;
using ApplyNode = lf::astapi::ApplyNode<CA>;
using CallOrIndex = lf::astapi::CallOrIndex<CA>;
using CellIndex = lf::astapi::CellIndex<CA>;
using EnumerationMember = lf::astapi::EnumerationMember<CA>;
using SuperclassCall = lf::astapi::SuperclassCall<CA>;
using InputArgument = lf::astapi::InputArgument<CA>;
using AnonymousFunction = lf::astapi::AnonymousFunction<CA>;
using FunctionDeclaration = lf::astapi::FunctionDeclaration<CA>;
using FunctionDefinition = lf::astapi::FunctionDefinition<CA>;
using SimpleAssignment = lf::astapi::SimpleAssignment<CA>;
using MultipleAssignment = lf::astapi::MultipleAssignment<CA>;
using CommandStatement = lf::astapi::CommandStatement<CA>;
using ConditionalBody = lf::astapi::ConditionalBody<CA>;
using IfStatement = lf::astapi::IfStatement<CA>;
using ForStatement = lf::astapi::ForStatement<CA>;
using SwitchStatement = lf::astapi::SwitchStatement<CA>;
using CatchClause = lf::astapi::CatchClause<CA>;
using TryStatement = lf::astapi::TryStatement<CA>;
using SpmdStatement = lf::astapi::SpmdStatement<CA>;
using Attribute = lf::astapi::Attribute<CA>;
using ValidationNode = lf::astapi::ValidationNode<CA>;
using PropertyNode = lf::astapi::PropertyNode<CA>;
using ArgumentDeclaration = lf::astapi::ArgumentDeclaration<CA>;
using ArgumentsBlock = lf::astapi::ArgumentsBlock<CA>;
using BlockNode = lf::astapi::BlockNode<CA>;
using PropertiesBlockNode = lf::astapi::PropertiesBlockNode<CA>;
using MethodsBlockNode = lf::astapi::MethodsBlockNode<CA>;
using Classdef = lf::astapi::Classdef<CA>;

// The positions of the first and the last character of the subtree, in the low 32 bits.
inline std::uint64_t getFirstPositionInSubtree(const Node& node) { return node.position; }
inline std::uint64_t getLastPositionInSubtree(const Node& node) { return node.lastPosition; }

}  // namespace ca::astapi
