// The file, the class definition and its blocks.
#include <fmt/format.h>

#include <utility>

#include "platform/analyzer/parser/ParserScopes.h"

namespace ca {

// The whole file: a class and the functions after it, or statements and functions.
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
      report(token_.begin,
             "expected only blank lines and comments in front of a class, found `classdef` behind "
             "something else");
      elements.add(parseClassdef());
      parseBehindClass(elements);
      return;
    }
    if (is(TokenKind::End)) elements.add(parseStrayKeyword());
  }
}

// Functions, each closed by `end`.
void Parser::parseBehindClass(ListBuilder<Node>& elements) {
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::EndOfText)) return;
    if (is(TokenKind::Function)) {
      const Node* function = skipFunction();
      elements.add(function != nullptr ? function : parseFunction(NodeKind::FunctionDefinition));
      continue;
    }
    refuse("a function or the end of the file behind the class");
  }
}

// classdef (Attributes) Name < Super & pkg.Super
//   blocks
// end
const Parser::Node* Parser::parseClassdef() {
  const Token opening = token_;
  auto* classdef = makeNode<astapi::Classdef>(NodeKind::Classdef, opening.begin);
  if (classdef_ == nullptr) classdef_ = classdef;
  advance();
  const Token head = token_;
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
  if (!failed_ && is(TokenKind::Dot)) fail("`<` or the first block behind the name of the class");
  if (failed_ && classdef->superClasses.empty()) rescueHead(*classdef, head);
  recover();
  parseClassBody(*classdef);
  expectEnd(opening, "classdef");
  return finish(classdef);
}

// Reads the name and the superclasses of a class from a line with an error, or with brackets that
// are too deep, before them; `head` is the token after `classdef`. The current token stays
// the same.
void Parser::rescueHead(astapi::Classdef& classdef, const Token& head) {
  const Token resume = std::exchange(token_, head);
  const std::uint32_t lastEnd = lastEnd_;
  failed_ = false;
  isSkipping_ = true;
  if (is(TokenKind::OpenParenthesis) && !skipParentheses()) token_ = head;
  if (is(TokenKind::Identifier) && classdef.name == nullptr) classdef.name = takeIdentifier();
  rescueSuperClasses(classdef, resume.begin);
  isSkipping_ = false;
  failed_ = true;
  token_ = resume;
  lastEnd_ = lastEnd;
}

// Name < Super & pkg.Super, anywhere in the rest of the line up to `end`.
void Parser::rescueSuperClasses(astapi::Classdef& classdef, std::uint32_t end) {
  Token last;
  TokenKind previous = TokenKind::Comma;
  while (token_.begin < end && !is(TokenKind::LineEnd) && !is(TokenKind::Less)) {
    last = token_;
    skipToken(previous);
  }
  if (token_.begin >= end || !accept(TokenKind::Less)) return;
  if (classdef.name == nullptr && last.kind == TokenKind::Identifier) {
    classdef.name = makeIdentifier(last);
  }
  ListBuilder<Identifier> superClasses(*this);
  do {
    if (is(TokenKind::Identifier)) superClasses.add(takeDottedName());
  } while (accept(TokenKind::And));
  classdef.superClasses = superClasses.take();
}

// Skips the current parenthesis and all up to the one that closes it. Returns false if the line
// ends first, other than inside a list, or the text.
bool Parser::skipParentheses() {
  std::vector<BracketType> open;
  TokenKind previous = TokenKind::Comma;
  do {
    const bool isInList = !open.empty() && open.back() == BracketType::list;
    if (is(TokenKind::EndOfText) || (is(TokenKind::LineEnd) && !isInList)) return false;
    // A `)` also ends the lists that nothing closed.
    while (isInList && is(TokenKind::CloseParenthesis) && open.back() == BracketType::list) {
      open.pop_back();
    }
    countBracket(open);
    skipToken(previous);
  } while (!open.empty());
  return true;
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
  Level level(*this);
  ListBuilder<Node> members(*this);
  for (;;) {
    recover();
    skipSeparators();
    if (is(TokenKind::End) || is(TokenKind::EndOfText)) break;
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
    refuse("`properties`, `methods`, `events`, `enumeration` or `end`");
  }
  classdef.members = members.take();
}

// Reports and takes what is not allowed here: a class or a statement with all its contents.
void Parser::refuse(const char* expected) {
  if (isKeyword(token_.kind) && !is(TokenKind::End)) {
    report(token_.begin, fmt::format("expected {}, found {}", expected, describe(token_)));
    if (is(TokenKind::Classdef)) {
      parseClassdef();
    } else {
      parseStatement();
    }
    recover();
    return;
  }
  const std::uint32_t begin = token_.begin;
  fail(expected);
  recover();
  if (token_.begin == begin && !is(TokenKind::EndOfText)) advance();
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
  advance();
  if (is(TokenKind::OpenParenthesis)) {
    lf::astapi::BracketPair brackets;
    block->attributes = parseAttributes(brackets);
    block->openingParenthesis = brackets.opening;
    block->closingParenthesis = brackets.closing;
  }
  Level level(*this);
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
  // Without `end` a function ends where the next one begins.
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
    const Node* function = skipFunction();
    if (function == nullptr) function = parseFunction(NodeKind::FunctionDefinition);
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
  if (is(TokenKind::OpenParenthesis)) member->arguments = parseArguments();
  finish(member);
  finishMember("the enumeration member", false);
  return member;
}

}  // namespace ca
