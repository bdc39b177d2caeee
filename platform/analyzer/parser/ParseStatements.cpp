// Statements.
#include <fmt/format.h>

#include "platform/analyzer/parser/ParserScopes.h"
#include "platform/analyzer/text/CharacterClass.h"

namespace ca {

namespace {

// Whether the node is a name, with or without indices.
bool isAssignmentTarget(const astapi::Node& node) {
  using lf::astapi::NodeKind;
  const astapi::Node* base = &node;
  for (;;) {
    switch (base->kind) {
      case NodeKind::Identifier:
        return true;
      case NodeKind::CallOrIndex:
      case NodeKind::CellIndex:
        base = static_cast<const astapi::ApplyNode*>(base)->base;
        break;
      case NodeKind::FieldReference:
      case NodeKind::DynamicField:
        base = static_cast<const astapi::PairNode*>(base)->left;
        break;
      default:
        return false;
    }
  }
}

}  // namespace

Parser::NodeList<Parser::Node> Parser::parseStatements(BodyType type) {
  ListBuilder<Node> statements(*this);
  for (;;) {
    skipSeparators();
    if (isBodyEnd(type)) return statements.take();
    statements.add(parseStatement());
    finishStatement(type);
  }
}

// The statements of one level of nesting.
Parser::NodeList<Parser::Node> Parser::parseBody(BodyType type) {
  Level level(*this);
  return parseStatements(type);
}

bool Parser::isBodyEnd(BodyType type) const {
  switch (token_.kind) {
    case TokenKind::EndOfText:
    case TokenKind::End:
      return true;
    case TokenKind::Function:
      return type == BodyType::functionBody && style_ == FunctionStyleType::open;
    case TokenKind::Classdef:
      // No construct that is still open here can contain a class.
      return classdef_ == nullptr && lexer_.isFirstOnLine(token_.begin);
    default:
      return isClauseWord(type);
  }
}

bool Parser::isClauseWord(BodyType type) const {
  switch (token_.kind) {
    case TokenKind::Else:
    case TokenKind::ElseIf:
      return type == BodyType::ifBody;
    case TokenKind::Case:
    case TokenKind::Otherwise:
      return type == BodyType::caseBody;
    case TokenKind::Catch:
      return type == BodyType::tryBody;
    default:
      return false;
  }
}

void Parser::finishStatement(BodyType type) {
  if (!failed_ && !isSeparator() && !isClauseWord(type)) finishMember("the statement", false);
  recover();
}

const Parser::Node* Parser::parseStatement() {
  switch (token_.kind) {
    case TokenKind::Identifier:
      if (lexer_.isCommandBehind(token_.end)) return parseCommand();
      return parseExpressionOrAssignment();
    case TokenKind::OpenBracket:
      return parseMultipleAssignment();
    case TokenKind::If:
      return parseIf();
    case TokenKind::For:
    case TokenKind::Parfor:
      return parseFor();
    case TokenKind::While:
      return parseWhile();
    case TokenKind::Switch:
      return parseSwitch();
    case TokenKind::Try:
      return parseTry();
    case TokenKind::Spmd:
      return parseSpmd();
    case TokenKind::Function:
      return parseFunction(inFunction_ ? NodeKind::NestedFunction : NodeKind::FunctionDefinition);
    case TokenKind::Global:
      return parseNames(NodeKind::GlobalStatement);
    case TokenKind::Persistent:
      return parseNames(NodeKind::PersistentStatement);
    case TokenKind::Return: {
      auto* statement = makeNode<astapi::ReturnStatement>(NodeKind::ReturnStatement, token_.begin);
      advance();
      return finish(statement);
    }
    case TokenKind::Break:
      return takeLeaf(NodeKind::BreakStatement);
    case TokenKind::Continue:
      return takeLeaf(NodeKind::ContinueStatement);
    default:
      if (isKeyword(token_.kind)) return parseStrayKeyword();
      return parseExpressionOrAssignment();
  }
}

// A keyword that can begin no statement here, and its operand.
const Parser::Node* Parser::parseStrayKeyword() {
  report(token_.begin, fmt::format("expected a statement, found {}", describe(token_)));
  const bool hasOperand = is(TokenKind::Catch) || is(TokenKind::ElseIf) || is(TokenKind::Case);
  advance();
  if (hasOperand) {
    failed_ = true;
    skipToSafePlace();
  }
  return nullptr;
}

// hold on
const Parser::Node* Parser::parseCommand() {
  auto* command = makeNode<astapi::CommandStatement>(NodeKind::CommandStatement, token_.begin);
  command->name = makeIdentifier(token_);
  ListBuilder<Node> words(*this);
  std::uint32_t end = token_.end;
  for (;;) {
    const Lexer::Word word = lexer_.scanCommandWord(end);
    if (word.begin == word.end) break;
    auto* leaf = makeNode<astapi::Leaf>(NodeKind::CommandWord, word.begin);
    leaf->lastPosition = word.end - 1;
    words.add(leaf);
    end = word.end;
  }
  command->words = words.take();
  token_.end = end;
  advance();
  return finish(command);
}

// --- expressions and assignments ---

const Parser::Node* Parser::parseExpressionOrAssignment() {
  const Node* left = parseExpression();
  if (failed_) return left;
  if (is(TokenKind::Assign)) {
    checkTargets(*left);
    auto* assignment =
        makeNode<astapi::SimpleAssignment>(NodeKind::SimpleAssignment, left->position);
    advance();
    assignment->target = left;
    assignment->value = parseExpression();
    return finish(assignment);
  }
  auto* statement = makeNode<astapi::WrapperNode>(NodeKind::ExpressionStatement, left->position);
  statement->operand = left;
  return finish(statement);
}

// Reports what is not allowed before `=`: each bad element of a list, or the one bad target.
void Parser::checkTargets(const Node& left) {
  if (isAssignmentTarget(left)) return;
  const auto tell = [&](const Node& node) {
    Token text{.kind = TokenKind::Identifier, .begin = node.position, .end = node.lastPosition + 1};
    report(node.position,
           fmt::format("expected a name with or without indices in front of `=`, found {}",
                       textOf(text)));
  };
  bool reported = false;
  if (left.kind == NodeKind::MatrixLiteral) {
    for (const Node* row : static_cast<const astapi::ListNode&>(left).elements) {
      for (const Node* element : static_cast<const astapi::ListNode*>(row)->elements) {
        if (isAssignmentTarget(*element)) continue;
        tell(*element);
        reported = true;
      }
    }
  }
  if (!reported) tell(left);
}

// [a, b.c, ~] = expression, or an expression that begins with a list.
const Parser::Node* Parser::parseMultipleAssignment() {
  const Token opening = token_;
  const std::uint32_t lastEnd = lastEnd_;
  const std::size_t errors = errors_.size();
  NodeList<Node> targets;
  if (!parseTargets(targets)) {
    if (isTooDeep_) return nullptr;
    failed_ = false;
    errors_.resize(errors);
    lastEnd_ = lastEnd;
    token_ = opening;
    return parseExpressionOrAssignment();
  }
  auto* assignment =
      makeNode<astapi::MultipleAssignment>(NodeKind::MultipleAssignment, opening.begin);
  advance();
  assignment->targets = targets;
  assignment->value = parseExpression();
  return finish(assignment);
}

// The list of targets up to the `=` after it; false if there is no such list here.
bool Parser::parseTargets(NodeList<Node>& targets) {
  ListBuilder<Node> list(*this);
  Bracket bracket(*this, BracketType::list);
  for (;;) {
    if (is(TokenKind::Tilde)) {
      list.add(takeLeaf(NodeKind::Ignored));
    } else if (is(TokenKind::Identifier)) {
      const Node* target = parseIndexed(takeIdentifier());
      if (!isAssignmentTarget(*target)) return false;
      list.add(target);
    } else {
      return false;
    }
    if (failed_) return false;
    if (accept(TokenKind::Comma)) continue;
    if (is(TokenKind::CloseBracket)) break;
    if (!token_.blankBefore) return false;
  }
  bracket.close();
  if (failed_ || !is(TokenKind::Assign)) return false;
  targets = list.take();
  return true;
}

// global a b
const Parser::Node* Parser::parseNames(NodeKind kind) {
  auto* statement = makeNode<astapi::ListNode>(kind, token_.begin);
  advance();
  ListBuilder<Node> names(*this);
  if (!is(TokenKind::Identifier)) fail("a name");
  while (is(TokenKind::Identifier) && !failed_) names.add(takeIdentifier());
  statement->elements = names.take();
  return finish(statement);
}

}  // namespace ca
