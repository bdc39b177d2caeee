// Expressions.
#include <array>
#include <cstdint>

#include "platform/analyzer/parser/ParserScopes.h"

namespace ca {

namespace {

// The meaning of a token after an operand.
struct Continuation {
  // The precedence of a binary operator, from 1; 0 for any other token. Prefix operators are
  // between the highest of these and the power.
  std::uint8_t level = 0;
  // Whether it may begin an index, a field or a superclass call, or be a transpose or a power.
  bool bindsAsPower = false;
};

constexpr auto makeContinuations() {
  std::array<Continuation, 256> continuations{};
  const auto setLevel = [&](TokenKind first, TokenKind last, std::uint8_t level) {
    for (auto kind = static_cast<unsigned>(first); kind <= static_cast<unsigned>(last); ++kind) {
      continuations[kind].level = level;
    }
  };
  setLevel(TokenKind::OrOr, TokenKind::OrOr, 1);
  setLevel(TokenKind::AndAnd, TokenKind::AndAnd, 2);
  setLevel(TokenKind::Or, TokenKind::Or, 3);
  setLevel(TokenKind::And, TokenKind::And, 4);
  setLevel(TokenKind::Less, TokenKind::NotEqual, 5);
  setLevel(TokenKind::Colon, TokenKind::Colon, 6);
  setLevel(TokenKind::Plus, TokenKind::Minus, 7);
  setLevel(TokenKind::Multiplicative, TokenKind::Multiplicative, 8);
  for (const TokenKind kind :
       {TokenKind::OpenParenthesis, TokenKind::OpenBrace, TokenKind::Dot, TokenKind::At,
        TokenKind::Quote, TokenKind::DotQuote, TokenKind::Power}) {
    continuations[static_cast<unsigned>(kind)].bindsAsPower = true;
  }
  return continuations;
}

constexpr auto continuations = makeContinuations();

const Continuation& continuationOf(TokenKind kind) {
  return continuations[static_cast<unsigned>(kind)];
}

constexpr int rangeLevel = 6;

bool isPrefixOperator(TokenKind kind) {
  return kind == TokenKind::Plus || kind == TokenKind::Minus || kind == TokenKind::Tilde;
}

}  // namespace

const Parser::Node* Parser::parseExpression() { return parseBinary(1); }

// Operators of one level group to the left, so that a chain of any length is a loop.
const Parser::Node* Parser::parseBinary(int minimumLevel) {
  const Node* left = parsePrefix();
  for (;;) {
    const int level = continuationOf(token_.kind).level;
    if (level < minimumLevel || failed_ || isElementBoundary()) return left;
    if (level == rangeLevel) {
      left = parseRange(left);
      continue;
    }
    advance();
    left = makePair(NodeKind::BinaryOperation, left, parseBinary(level + 1));
  }
}

// start:stop or start:step:stop; the current token is the first colon.
const Parser::Node* Parser::parseRange(const Node* start) {
  auto* range = makeNode<astapi::Range>(NodeKind::Range, start->position);
  advance();
  range->start = start;
  range->stop = parseBinary(rangeLevel + 1);
  if (!failed_ && is(TokenKind::Colon)) {
    advance();
    range->step = range->stop;
    range->stop = parseBinary(rangeLevel + 1);
  }
  return finish(range);
}

// Whether a list element ends before the current sign: `[a -b]` has two elements.
bool Parser::isElementBoundary() const {
  if (!inList_ || !token_.blankBefore) return false;
  if (!is(TokenKind::Plus) && !is(TokenKind::Minus)) return false;
  return !lexer_.isBlankAt(token_.end);
}

const Parser::Node* Parser::parsePrefix() {
  if (isPrefixOperator(token_.kind)) return parsePrefixOperation();
  const Node* operand = parsePrimary();
  return continuationOf(token_.kind).bindsAsPower ? parsePower(operand) : operand;
}

const Parser::Node* Parser::parsePrefixOperation() {
  auto* operation = makeNode<astapi::UnaryOperation>(NodeKind::UnaryOperation, token_.begin);
  operation->isPrefix = true;
  Level level(*this);
  advance();
  operation->operand = parsePrefix();
  return finish(operation);
}

// Powers and transposes, which have the same precedence, from left to right.
const Parser::Node* Parser::parsePower(const Node* left) {
  left = parseTransposes(parseIndexed(left));
  while (!failed_ && is(TokenKind::Power)) {
    advance();
    left = makePair(NodeKind::BinaryOperation, left, parsePowerOperand());
    left = parseTransposes(left);
  }
  return left;
}

// The right side of a power may have prefix operators of its own: `2^-1`.
const Parser::Node* Parser::parsePowerOperand() {
  if (!isPrefixOperator(token_.kind)) return parseIndexed(parsePrimary());
  auto* operation = makeNode<astapi::UnaryOperation>(NodeKind::UnaryOperation, token_.begin);
  operation->isPrefix = true;
  Level level(*this);
  advance();
  operation->operand = parsePowerOperand();
  return finish(operation);
}

const Parser::Node* Parser::parseTransposes(const Node* operand) {
  while (!failed_ && isTranspose()) {
    auto* operation = makeNode<astapi::UnaryOperation>(NodeKind::UnaryOperation, operand->position);
    operation->operand = operand;
    advance();
    operand = finish(operation);
  }
  return operand;
}

// In a list, after a blank, a quote opens a literal and any other token begins a new element.
bool Parser::isTranspose() const {
  if (!is(TokenKind::Quote) && !is(TokenKind::DotQuote)) return false;
  return !inList_ || !token_.blankBefore;
}

// --- suffixes of a primary ---

const Parser::Node* Parser::parseIndexed(const Node* base) {
  while (!failed_) {
    if (is(TokenKind::OpenParenthesis) && !isApartInList()) {
      base = parseApplication(NodeKind::CallOrIndex, base);
    } else if (is(TokenKind::OpenBrace) && !token_.blankBefore) {
      base = parseApplication(NodeKind::CellIndex, base);
    } else if (is(TokenKind::Dot) && !isApartInList()) {
      base = parseField(base);
    } else if (is(TokenKind::At) && !token_.blankBefore && isSuperclassCall(*base)) {
      base = parseSuperclassCall(base);
    } else {
      break;
    }
  }
  return base;
}

// base(arguments) or base{arguments}
const Parser::Node* Parser::parseApplication(NodeKind kind, const Node* base) {
  auto* application = makeNode<astapi::ApplyNode>(kind, base->position);
  application->base = base;
  application->arguments = parseArguments();
  return finish(application);
}

// base.name or base.(expression)
const Parser::Node* Parser::parseField(const Node* base) {
  advance();
  if (!is(TokenKind::OpenParenthesis) || isApartInList()) return parseFieldName(base);
  auto* field = makePair(NodeKind::DynamicField, base, base);
  Bracket bracket(*this, BracketType::plain);
  field->right = parseExpressionOrColon();
  bracket.close();
  return finish(field);
}

// The name after the point.
const Parser::Node* Parser::parseFieldName(const Node* base) {
  if (!isFieldName()) {
    fail("the name of a field behind `.`");
    return base;
  }
  return makePair(NodeKind::FieldReference, base, takeIdentifier());
}

// Whether the token after a point is a field name, which a keyword can be too.
bool Parser::isFieldName() const {
  return (is(TokenKind::Identifier) || isKeyword(token_.kind)) && !isApartInList();
}

// Whether `@` after a name or a chain of names begins the superclass of a call.
bool Parser::isSuperclassCall(const Node& base) const {
  if (!lexer_.isLetterAt(token_.end)) return false;
  const Node* name = &base;
  while (name->kind == NodeKind::FieldReference) {
    name = static_cast<const astapi::PairNode*>(name)->left;
  }
  return name->kind == NodeKind::Identifier;
}

// method@pkg.Base(arguments)
const Parser::Node* Parser::parseSuperclassCall(const Node* base) {
  auto* call = makeNode<astapi::SuperclassCall>(NodeKind::SuperclassCall, base->position);
  advance();
  call->method = base;
  if (!is(TokenKind::Identifier)) fail("the name of a superclass behind `@`");
  call->superClass = failed_ ? makeNameless() : takeDottedName();
  if (failed_) return finish(call);
  if (is(TokenKind::OpenParenthesis) && !isApartInList()) {
    call->arguments = parseArguments();
  } else {
    fail("`(` behind the superclass of a superclass call");
  }
  return finish(call);
}

Parser::NodeList<Parser::Node> Parser::parseArguments() {
  ListBuilder<Node> arguments(*this);
  Bracket bracket(*this, BracketType::arguments);
  if (!is(bracket.closing())) {
    do {
      arguments.add(parseArgument());
    } while (accept(TokenKind::Comma));
  }
  bracket.close();
  return arguments.take();
}

// expression or name = expression
const Parser::Node* Parser::parseArgument() {
  const Node* argument = parseExpressionOrColon();
  if (failed_ || !is(TokenKind::Assign)) return argument;
  if (argument->kind != NodeKind::Identifier) {
    fail("`,` or the closing bracket behind the argument");
    return argument;
  }
  advance();
  return makePair(NodeKind::NamedArgument, argument, parseExpressionOrColon());
}

// One argument, the value of a named one, or an index: an expression, or in an argument list a bare
// `:`.
const Parser::Node* Parser::parseExpressionOrColon() {
  if (is(TokenKind::Colon) && argumentDepth_ > 0) return takeLeaf(NodeKind::Colon);
  return parseExpression();
}

// --- primaries ---

const Parser::Node* Parser::parsePrimary() {
  switch (token_.kind) {
    case TokenKind::Identifier:
      return takeIdentifier();
    case TokenKind::Number:
      return parseNumber();
    case TokenKind::Quote:
    case TokenKind::DoubleQuote:
      return parseLiteral();
    case TokenKind::OpenParenthesis:
      return parseParenthesized();
    case TokenKind::OpenBracket:
    case TokenKind::OpenBrace:
      return parseList();
    case TokenKind::At:
      return parseAt();
    case TokenKind::Question:
      return parseClassQuery();
    case TokenKind::End:
      if (argumentDepth_ > 0) return takeLeaf(NodeKind::EndInIndex);
      break;
    default:
      break;
  }
  fail("an expression");
  return makeMissing();
}

const Parser::Node* Parser::parseNumber() {
  const Lexer::Number number = lexer_.scanNumber(token_.begin);
  token_.end = number.end;
  auto* literal = makeNode<astapi::NumberLiteral>(NodeKind::NumberLiteral, token_.begin);
  literal->text = astapi::SourceText(lexer_.textOf(token_));
  literal->value = number.value;
  if (!number.fits) {
    report(token_.begin, "expected a number that fits its type, found " + describe(token_));
  }
  advance();
  finish(literal);
  if (is(TokenKind::Identifier) && !token_.blankBefore) {
    report(token_.begin,
           "expected an operator or a blank behind the number, found " + describe(token_));
    advance();
  }
  return literal;
}

const Parser::Node* Parser::parseLiteral() {
  token_ = lexer_.scanLiteral(token_.begin, token_.blankBefore);
  const NodeKind kind =
      is(TokenKind::DoubleQuote) ? NodeKind::StringLiteral : NodeKind::CharLiteral;
  auto* literal = makeNode<astapi::CharLiteral>(kind, token_.begin);
  literal->text = astapi::SourceText(lexer_.textOf(token_));
  advance();
  return finish(literal);
}

const Parser::Node* Parser::parseParenthesized() {
  auto* node = makeNode<astapi::WrapperNode>(NodeKind::Parenthesized, token_.begin);
  Bracket bracket(*this, BracketType::plain);
  node->operand = parseExpressionOrColon();
  bracket.close();
  return finish(node);
}

// [a b; c, d] or {a b; c, d}
const Parser::Node* Parser::parseList() {
  const NodeKind kind =
      is(TokenKind::OpenBracket) ? NodeKind::MatrixLiteral : NodeKind::CellLiteral;
  auto* list = makeNode<astapi::ListNode>(kind, token_.begin);
  ListBuilder<Node> rows(*this);
  Bracket bracket(*this, BracketType::list);
  const TokenKind close = bracket.closing();
  while (!failed_ && !is(close)) {
    rows.add(parseRow(close));
    if (!failed_ && !is(close) && !accept(TokenKind::Semicolon) && !accept(TokenKind::LineEnd))
      break;
  }
  bracket.close();
  list->elements = rows.take();
  return finish(list);
}

// The elements up to the end of the row; null for an empty row.
const Parser::Node* Parser::parseRow(TokenKind close) {
  const auto isRowEnd = [&] {
    return is(close) || is(TokenKind::Semicolon) || is(TokenKind::LineEnd);
  };
  while (accept(TokenKind::Comma)) {
  }
  if (isRowEnd()) return nullptr;
  auto* row = makeNode<astapi::ListNode>(NodeKind::ListRow, token_.begin);
  ListBuilder<Node> elements(*this);
  for (;;) {
    elements.add(parseExpressionOrColon());
    finish(row);
    if (failed_) break;
    if (is(TokenKind::Comma)) {
      unsigned commas = 0;
      for (; accept(TokenKind::Comma); ++commas) {
      }
      if (isRowEnd()) break;
      if (commas > 1) {
        fail("an element between two commas");
        break;
      }
    } else if (isRowEnd()) {
      break;
    } else if (!token_.blankBefore) {
      fail("a blank, `,`, `;` or the closing bracket behind the element");
      break;
    }
  }
  row->elements = elements.take();
  return row;
}

// @name or @(inputs) expression
const Parser::Node* Parser::parseAt() {
  const std::uint32_t position = token_.begin;
  advance();
  if (is(TokenKind::OpenParenthesis)) return parseAnonymousFunction(position);
  if (is(TokenKind::Identifier)) return parseFunctionHandle(position);
  fail("the name of a function or `(` behind `@`");
  return makeMissing();
}

const Parser::Node* Parser::parseAnonymousFunction(std::uint32_t position) {
  auto* function = makeNode<astapi::AnonymousFunction>(NodeKind::AnonymousFunction, position);
  function->inputs = parseInputs();
  Level level(*this);
  function->body = failed_ ? makeMissing() : parseExpression();
  return finish(function);
}

const Parser::Node* Parser::parseFunctionHandle(std::uint32_t position) {
  auto* handle = makeNode<astapi::ListNode>(NodeKind::FunctionHandle, position);
  ListBuilder<Node> words(*this);
  words.add(takeIdentifier());
  while (is(TokenKind::Dot) && !token_.blankBefore && !isDynamicField()) {
    advance();
    if (!isFieldName()) {
      fail("a name behind `.`");
      break;
    }
    words.add(takeIdentifier());
  }
  handle->elements = words.take();
  return finish(handle);
}

// Whether a parenthesis follows the current point: `.(expression)`.
bool Parser::isDynamicField() const {
  return lexer_.at(lexer_.skipBlanksAndContinuations(token_.end)) == u'(';
}

// ?pkg.Name
const Parser::Node* Parser::parseClassQuery() {
  auto* query = makeNode<astapi::WrapperNode>(NodeKind::ClassQuery, token_.begin);
  advance();
  if (!is(TokenKind::Identifier)) {
    fail("the name of a class behind `?`");
    query->operand = makeMissing();
    return finish(query);
  }
  query->operand = takeDottedName();
  return finish(query);
}

// The placeholder of a missing expression.
Parser::Node* Parser::makeMissing() {
  auto* missing = makeNode<astapi::Leaf>(NodeKind::MissingExpression, lastEnd_);
  missing->lastPosition = lastEnd_ - 1;
  return missing;
}

astapi::PairNode* Parser::makePair(NodeKind kind, const Node* left, const Node* right) {
  auto* pair = makeNode<astapi::PairNode>(kind, left->position);
  pair->left = left;
  pair->right = right;
  return finish(pair);
}

}  // namespace ca
