// The kinds of syntax nodes, and the limit of their nesting.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace ca {

// A text with deeper nesting is not analysed. In levels.
inline constexpr unsigned maximumNesting = 1000;

}  // namespace ca

namespace lf::astapi {

// One line for each kind: number and name. The numbers are part of the tree's interface. Ast.h
// gives the children of each kind, and their order in a walk.
// clang-format off
#define LF_ASTAPI_NODE_KINDS(KIND) \
  KIND(1, AnonymousFunction)       \
  KIND(3, ArgumentDeclaration)     \
  KIND(4, ArgumentsBlock)          \
  KIND(5, SimpleAssignment)        \
  KIND(6, Attribute)               \
  KIND(7, BreakStatement)          \
  KIND(8, BinaryOperation)         \
  KIND(9, CellIndex)               \
  KIND(11, CaseClause)             \
  KIND(12, CatchClause)            \
  KIND(13, CellLiteral)            \
  KIND(14, CharLiteral)            \
  KIND(15, Classdef)               \
  KIND(16, Colon)                  \
  KIND(17, Range)                  \
  KIND(18, CommandStatement)       \
  KIND(19, CommandWord)            \
  KIND(20, ContinueStatement)      \
  KIND(22, DynamicField)           \
  KIND(23, FieldReference)         \
  KIND(24, ElseClause)             \
  KIND(25, ElseIfClause)           \
  KIND(26, MissingExpression)      \
  KIND(27, EndInIndex)             \
  KIND(28, EnumerationBlock)       \
  KIND(29, EnumerationMember)      \
  KIND(30, Event)                  \
  KIND(31, EventsBlock)            \
  KIND(32, ExpressionStatement)    \
  KIND(34, SuperclassCall)         \
  KIND(35, NestedFunction)         \
  KIND(36, GlobalStatement)        \
  KIND(37, Identifier)             \
  KIND(38, IfStatement)            \
  KIND(39, Ignored)                \
  KIND(40, FunctionHandle)         \
  KIND(41, InputArgument)          \
  KIND(42, MatrixLiteral)          \
  KIND(43, FunctionDeclaration)    \
  KIND(44, FunctionDefinition)     \
  KIND(45, MethodsBlockNode)       \
  KIND(46, MultipleAssignment)     \
  KIND(47, NamedArgument)          \
  KIND(48, NumberLiteral)          \
  KIND(49, OtherwiseClause)        \
  KIND(50, CallOrIndex)            \
  KIND(51, Parenthesized)          \
  KIND(52, ForStatement)           \
  KIND(53, PersistentStatement)    \
  KIND(54, ClassQuery)             \
  KIND(55, SourceText)             \
  KIND(56, PropertiesBlockNode)    \
  KIND(57, PropertyNode)           \
  KIND(58, ReturnStatement)        \
  KIND(59, ListRow)                \
  KIND(60, SpmdStatement)          \
  KIND(61, StringLiteral)          \
  KIND(62, SwitchStatement)        \
  KIND(63, TryStatement)           \
  KIND(64, UnaryOperation)         \
  KIND(65, ValidationNode)         \
  KIND(66, WhileStatement)
// clang-format on

enum class NodeKind : std::uint8_t {
#define LF_ASTAPI_ENUMERATOR(number, name) name = number,
  LF_ASTAPI_NODE_KINDS(LF_ASTAPI_ENUMERATOR)
#undef LF_ASTAPI_ENUMERATOR
};

// Prints the kind's name, or its number if it has none.
std::ostream& operator<<(std::ostream& out, NodeKind kind);

}  // namespace lf::astapi
