// What properties and arguments declare: size, class, validators, default value.
#include <algorithm>

#include "platform/analyzer/parser/ParserScopes.h"
#include "platform/analyzer/text/CharacterClass.h"

namespace ca {

// Gain (1, 1) double {mustBePositive} = 3;
// ^~~~ ^~~~~~ ^~~~~~ ^~~~~~~~~~~~~~~~   ^
// name size   class  validators         default; the terminator belongs to the block
const Parser::Node* Parser::parseProperty() {
  if (!is(TokenKind::Identifier)) {
    if (isKeyword(token_.kind)) return parseStrayKeyword(), nullptr;
    fail("the name of a property or `end`");
    return nullptr;
  }
  auto* property = makeNode<astapi::PropertyNode>(NodeKind::PropertyNode, token_.begin);
  property->name = takeIdentifier();
  parseDeclarationTail(*property);
  finish(property);
  finishMember("the declaration", true);
  return property;
}

template <class Declaration>
void Parser::parseDeclarationTail(Declaration& declaration) {
  if (is(TokenKind::OpenParenthesis) || is(TokenKind::Identifier) || is(TokenKind::OpenBrace)) {
    declaration.validation = parseValidation();
  }
  if (!failed_ && accept(TokenKind::Assign)) declaration.defaultValue = parseExpression();
}

const astapi::ValidationNode* Parser::parseValidation() {
  auto* validation = makeNode<astapi::ValidationNode>(NodeKind::ValidationNode, token_.begin);
  if (is(TokenKind::OpenParenthesis)) parseSize(*validation);
  if (!failed_ && is(TokenKind::Identifier)) validation->className = takeDottedName();
  if (!failed_ && is(TokenKind::OpenBrace)) parseValidators(*validation);
  return finish(validation);
}

// (1, :)
void Parser::parseSize(astapi::ValidationNode& validation) {
  ListBuilder<Node> size(*this);
  Bracket bracket(*this, BracketType::plain);
  do {
    if (is(TokenKind::Colon)) {
      size.add(takeLeaf(NodeKind::Colon));
      continue;
    }
    if (!is(TokenKind::Number)) {
      fail("a whole number or `:` as a size");
      break;
    }
    const Token written = token_;
    const Node* number = parseNumber();
    if (!isWholeNumber(*number)) {
      report(number->position,
             "expected a whole number or `:` as a size, found " + describe(written));
    }
    size.add(number);
  } while (accept(TokenKind::Comma));
  bracket.close();
  validation.size = size.take();
  validation.sizeParentheses = {bracket.position(), lastEnd_ - 1};
}

bool Parser::isWholeNumber(const Node& number) const {
  for (std::uint32_t at = number.position; at <= number.lastPosition; ++at) {
    if (!isDigit(lexer_.at(at))) return false;
  }
  return true;
}

// {mustBePositive, pkg.mustFit(Gain, 3)}
void Parser::parseValidators(astapi::ValidationNode& validation) {
  ListBuilder<Node> validators(*this);
  Bracket bracket(*this, BracketType::plain);
  if (!is(TokenKind::CloseBrace)) {
    do {
      validators.add(parseValidator());
    } while (accept(TokenKind::Comma));
  }
  bracket.close();
  validation.validators = validators.take();
  validation.validatorBraces = {bracket.position(), lastEnd_ - 1};
}

const Parser::Node* Parser::parseValidator() {
  if (!is(TokenKind::Identifier)) {
    fail("the name of a validator");
    return nullptr;
  }
  const Node* validator = parseNameChain();
  if (is(TokenKind::OpenParenthesis) && !failed_) {
    validator = parseApplication(NodeKind::CallOrIndex, validator);
  }
  return validator;
}

// name or name.name, as a chain of fields.
const Parser::Node* Parser::parseNameChain() {
  const Node* chain = takeIdentifier();
  while (!failed_ && accept(TokenKind::Dot)) chain = parseFieldName(chain);
  return chain;
}

// --- argument blocks ---

// Whether the word `arguments`, at the start of a function body, begins a block.
bool Parser::isArgumentsBlock() const {
  if (!is(TokenKind::Identifier) || lexer_.textOf(token_) != u"arguments") return false;
  std::uint32_t next = token_.end;
  while (isBlank(lexer_.at(next))) ++next;
  switch (lexer_.at(next)) {
    case u'\n':
    case u'(':
    case u',':
    case u';':
    case u'%':
      return true;
    default:
      return lexer_.isContinuationAt(next);
  }
}

Parser::NodeList<Parser::Node> Parser::parseArgumentBlocks() {
  ListBuilder<Node> blocks(*this);
  for (;;) {
    skipSeparators();
    if (!isArgumentsBlock()) return blocks.take();
    blocks.add(parseArgumentsBlock());
    recover();
  }
}

// arguments (Attributes)
//   declarations
// end
const Parser::Node* Parser::parseArgumentsBlock() {
  const Token opening = token_;
  auto* block = makeNode<astapi::ArgumentsBlock>(NodeKind::ArgumentsBlock, opening.begin);
  advance();
  if (is(TokenKind::OpenParenthesis)) {
    lf::astapi::BracketPair brackets;
    block->attributes = parseAttributes(brackets);
  }
  Level level(*this);
  ListBuilder<Node> declarations(*this);
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::End) || is(TokenKind::EndOfText)) break;
    declarations.add(parseArgumentDeclaration());
  }
  block->declarations = declarations.take();
  expectEnd(opening, "arguments");
  return finish(block);
}

// opts.Gain (1, 1) double = 1
const Parser::Node* Parser::parseArgumentDeclaration() {
  if (!is(TokenKind::Identifier)) {
    if (isKeyword(token_.kind)) return parseStrayKeyword(), nullptr;
    fail("the name of an argument or `end`");
    return nullptr;
  }
  auto* argument =
      makeNode<astapi::ArgumentDeclaration>(NodeKind::ArgumentDeclaration, token_.begin);
  argument->name = parseNameChain();
  if (!failed_) parseDeclarationTail(*argument);
  finish(argument);
  finishMember("the declaration", true);
  return argument;
}

}  // namespace ca
