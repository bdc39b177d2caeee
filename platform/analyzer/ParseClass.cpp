// The file, the class definition and its blocks.
#include <fmt/format.h>

#include "platform/analyzer/ParserScopes.h"

namespace ca {

// The whole file: a class and the functions behind it, or statements and functions.
void Parser::parseFile(ListBuilder<Node>& elements) {
  while (accept(TokenKind::LineEnd)) {
  }
  if (is(TokenKind::Classdef)) {
    elements.add(parseClassdef());
    parseBehindClass(elements);
    return;
  }
  while (!is(TokenKind::EndOfText)) {
    for (const Node* statement : parseStatements(BodyType::plain)) elements.add(statement);
    if (is(TokenKind::Classdef)) {
      report(token_.begin, "expected nothing but blank lines and comments in front of `classdef`");
      elements.add(parseClassdef());
      parseBehindClass(elements);
      return;
    }
    if (is(TokenKind::End)) elements.add(parseStrayKeyword());
  }
}

// Functions, each of them closed by `end`.
void Parser::parseBehindClass(ListBuilder<Node>& elements) {
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::EndOfText)) return;
    if (is(TokenKind::Function)) {
      elements.add(parseFunction(NodeKind::FunctionDefinition));
      finishMember("the function", true);
      continue;
    }
    const std::uint32_t begin = token_.begin;
    fail("a function or the end of the file behind the class");
    recover();
    if (token_.begin == begin) advance();
  }
}

// classdef (Attributes) Name < Super & pkg.Super
//   blocks
// end
const Parser::Node* Parser::parseClassdef() {
  const Token opening = token_;
  auto* classdef = makeNode<astapi::Classdef>(NodeKind::Classdef, opening.begin);
  if (classdef_ == nullptr) classdef_ = classdef;
  Level level(*this);
  advance();
  if (is(TokenKind::OpenParenthesis)) {
    lf::astapi::BracketPair brackets;
    classdef->attributes = parseAttributes(brackets);
  }
  if (!failed_) {
    if (is(TokenKind::Identifier)) {
      classdef->name = takeIdentifier();
    } else {
      fail("the name of the class");
    }
  }
  if (!failed_ && accept(TokenKind::Less)) classdef->superClasses = parseSuperClasses();
  recover();
  parseClassBody(*classdef);
  expectEnd(opening, "classdef");
  return finish(classdef);
}

// Super & pkg.Super
Parser::NodeList<Parser::Identifier> Parser::parseSuperClasses() {
  ListBuilder<Identifier> superClasses(*this);
  do {
    if (!is(TokenKind::Identifier)) {
      fail("the name of a superclass");
      break;
    }
    superClasses.add(takeDottedName());
  } while (accept(TokenKind::And));
  return superClasses.take();
}

void Parser::parseClassBody(astapi::Classdef& classdef) {
  ListBuilder<Node> members(*this);
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::End) || is(TokenKind::EndOfText)) break;
    const Token before = token_;
    if (const Node* block = parseBlock()) {
      members.add(block);
      continue;
    }
    if (is(TokenKind::Function)) {
      report(token_.begin,
             "expected a block or `end`, found `function` outside of a `methods` block");
      parseFunction(NodeKind::FunctionDefinition);
      continue;
    }
    fail("`properties`, `methods`, `events`, `enumeration` or `end`");
    recover();
    if (token_.begin == before.begin && !is(TokenKind::EndOfText)) advance();
  }
  classdef.members = members.take();
}

// Null when no block begins here.
const Parser::Node* Parser::parseBlock() {
  if (!is(TokenKind::Identifier)) return nullptr;
  const fl::ustring_view keyword = lexer_.textOf(token_);
  if (keyword == u"properties") {
    return parseBlockOf<astapi::PropertiesBlockNode>(NodeKind::PropertiesBlockNode, "properties",
                                                     &Parser::parseProperty);
  }
  if (keyword == u"methods") {
    return parseBlockOf<astapi::MethodsBlockNode>(NodeKind::MethodsBlockNode, "methods",
                                                  &Parser::parseMethod);
  }
  if (keyword == u"events") {
    return parseBlockOf<astapi::BlockNode>(NodeKind::EventsBlock, "events", &Parser::parseEvent);
  }
  if (keyword == u"enumeration") {
    return parseBlockOf<astapi::BlockNode>(NodeKind::EnumerationBlock, "enumeration",
                                           &Parser::parseEnumerationMember);
  }
  return nullptr;
}

// keyword (Attributes)
//   members
// end
template <class Block>
const Parser::Node* Parser::parseBlockOf(NodeKind kind, const char* keyword,
                                         const Node* (Parser::*parseMember)()) {
  const Token opening = token_;
  auto* block = makeNode<Block>(kind, opening.begin);
  Level level(*this);
  advance();
  if (is(TokenKind::OpenParenthesis)) {
    lf::astapi::BracketPair brackets;
    block->attributes = parseAttributes(brackets);
    block->openingParenthesis = brackets.opening;
    block->closingParenthesis = brackets.closing;
  }
  ListBuilder<Node> members(*this);
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::End) || is(TokenKind::EndOfText)) break;
    members.add((this->*parseMember)());
  }
  block->members = members.take();
  expectEnd(opening, keyword);
  block->closing = astapi::ClosingPosition(lastEnd_ - 1);
  return finish(block);
}

// (Name, ~Name, Name = expression)
Parser::NodeList<astapi::Attribute> Parser::parseAttributes(lf::astapi::BracketPair& brackets) {
  ListBuilder<astapi::Attribute> attributes(*this);
  Bracket bracket(*this, BracketType::plain);
  if (!is(TokenKind::CloseParenthesis)) {
    do {
      attributes.add(parseAttribute());
    } while (accept(TokenKind::Comma));
  }
  bracket.close();
  brackets = {bracket.position(), lastEnd_ - 1};
  return attributes.take();
}

const astapi::Attribute* Parser::parseAttribute() {
  const std::uint32_t begin = token_.begin;
  const bool negated = accept(TokenKind::Tilde);
  if (!is(TokenKind::Identifier)) {
    fail("the name of an attribute");
    return nullptr;
  }
  auto* attribute = makeNode<astapi::Attribute>(NodeKind::Attribute, begin);
  attribute->negated = negated;
  attribute->name = takeIdentifier();
  if (negated && is(TokenKind::Assign)) {
    fail("`,` or `)` behind an attribute with `~`, which has no value");
  } else if (accept(TokenKind::Assign)) {
    attribute->value = parseExpression();
  }
  return finish(attribute);
}

// --- members ---

void Parser::finishMember(const char* what, bool needsSeparator) {
  if (failed_ || isSeparator() || is(TokenKind::EndOfText)) return;
  if (is(TokenKind::End) && !needsSeparator) return;
  // Without a closing word a function ends where the next one begins.
  if (is(TokenKind::Function) && style_ == FunctionStyleType::open) return;
  const std::string expected = fmt::format("a line end, `;` or `,` behind {}", what);
  if (isKeyword(token_.kind)) {
    report(token_.begin, fmt::format("expected {}, found {}", expected, describe(token_)));
  } else {
    fail(expected);
  }
}

// A signature, or a function with its body.
const Parser::Node* Parser::parseMethod() {
  if (is(TokenKind::Function)) {
    const Node* function = parseFunction(NodeKind::FunctionDefinition);
    finishMember("the method", false);
    return function;
  }
  if (is(TokenKind::Identifier) || is(TokenKind::OpenBracket)) {
    const Node* signature = parseSignature();
    finishMember("the signature", false);
    return signature;
  }
  if (isKeyword(token_.kind)) return parseStrayKeyword(), nullptr;
  fail("a function, a signature or `end`");
  return nullptr;
}

const Parser::Node* Parser::parseEvent() {
  if (!is(TokenKind::Identifier)) {
    if (isKeyword(token_.kind)) return parseStrayKeyword(), nullptr;
    fail("the name of an event or `end`");
    return nullptr;
  }
  auto* event = makeNode<astapi::WrapperNode>(NodeKind::Event, token_.begin);
  event->operand = takeIdentifier();
  finish(event);
  finishMember("the event", false);
  return event;
}

// Name or Name(arguments)
const Parser::Node* Parser::parseEnumerationMember() {
  if (!is(TokenKind::Identifier)) {
    if (isKeyword(token_.kind)) return parseStrayKeyword(), nullptr;
    fail("the name of an enumeration member or `end`");
    return nullptr;
  }
  auto* member = makeNode<astapi::EnumerationMember>(NodeKind::EnumerationMember, token_.begin);
  member->base = takeIdentifier();
  if (is(TokenKind::OpenParenthesis))
    member->arguments = parseArguments(TokenKind::CloseParenthesis);
  finish(member);
  finishMember("the enumeration member", false);
  return member;
}

}  // namespace ca
