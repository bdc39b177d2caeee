// Functions, nested functions and signatures.
#include <algorithm>

#include "platform/analyzer/parser/ParserScopes.h"
#include "platform/text/TextSearch.h"

namespace ca {

// function outputs = name(inputs)
//   arguments ... end
//   statements
// end
const Parser::Node* Parser::parseFunction(NodeKind kind) {
  const Token opening = token_;
  auto* function = makeNode<astapi::FunctionDefinition>(kind, opening.begin);
  const bool wasInFunction = inFunction_;
  inFunction_ = true;
  advance();
  parseFunctionHead(*function);
  recover();
  parseFunctionBody(*function);
  inFunction_ = wasInFunction;
  if (style_ == FunctionStyleType::closed) expectEnd(opening, "function");
  return finish(function);
}

const Parser::Node* Parser::skipFunction() {
  const std::uint32_t length = known_ != nullptr ? findKnown(token_.begin) : 0;
  if (length == 0) return nullptr;
  auto* function = makeNode<astapi::FunctionDefinition>(NodeKind::FunctionDefinition, token_.begin);
  function->reader.store(reader_, std::memory_order_relaxed);
  advance();
  parseFunctionHead(*function);
  token_.end = function->position + length;
  advance();
  return finish(function);
}

std::uint32_t Parser::findKnown(std::uint32_t position) {
  // Few functions of the other text are gone here.
  constexpr std::size_t mostGone = 8;
  const std::size_t stop = std::min(nextKnown_ + mostGone, known_->ranges.size());
  for (std::size_t i = nextKnown_; i < stop; ++i) {
    const auto [begin, end] = known_->ranges[i];
    const fl::ustring_view text = lexer_.text().substr(position, end - begin + 1);
    // With the unit after it, by which `end` could be longer. Without a text it is at the same
    // place.
    const bool isHere =
        known_->text == nullptr
            ? position == begin
            : fl::areEqualTexts(text,
                                fl::ustring_view(*known_->text).substr(begin, end - begin + 1));
    if (!isHere) continue;
    nextKnown_ = i + 1;
    return end - begin;
  }
  return 0;
}

// The end of the function is not taken, so that nothing after it is read.
void Parser::parseSkipped(const astapi::Classdef* classdef, astapi::FunctionDefinition& function) {
  classdef_ = classdef;
  inFunction_ = true;
  token_ = lexer_.scan(function.position);
  advance();
  astapi::FunctionDeclaration head;
  parseFunctionHead(head);
  parseFunctionBody(function);
}

void Parser::parseFunctionBody(astapi::FunctionDefinition& function) {
  Level level(*this);
  function.arguments = parseArgumentBlocks();
  function.statements = parseStatements(BodyType::functionBody);
}

// outputs = name(inputs), in a methods block.
const Parser::Node* Parser::parseSignature() {
  auto* signature =
      makeNode<astapi::FunctionDeclaration>(NodeKind::FunctionDeclaration, token_.begin);
  parseFunctionHead(*signature);
  return finish(signature);
}

// name
// name(inputs)
// output = name(inputs)
// [outputs] = name(inputs)
void Parser::parseFunctionHead(astapi::FunctionDeclaration& function) {
  if (is(TokenKind::OpenBracket)) {
    function.outputs = parseOutputs();
    if (!failed_) expect(TokenKind::Assign, "`=` behind the outputs");
  } else if (is(TokenKind::Identifier)) {
    const Identifier* first = takeFunctionName();
    if (!is(TokenKind::Assign)) {
      function.name = first;
    } else if (first->text.view().find(u'.') != fl::ustring_view::npos) {
      fail("the name of an output in front of `=`");
    } else {
      ListBuilder<Node> outputs(*this);
      outputs.add(first);
      function.outputs = outputs.take();
      advance();
    }
  }
  if (!failed_ && function.name == nullptr) {
    if (is(TokenKind::Identifier)) {
      function.name = takeFunctionName();
    } else {
      fail("the name of the function");
    }
  }
  if (function.name == nullptr) {
    function.name = makeNameless();
  }
  if (!failed_ && is(TokenKind::OpenParenthesis)) function.inputs = parseInputs();
}

// An accessor's name, `get.Name` or `set.Name`, is one token.
const Parser::Identifier* Parser::takeFunctionName() {
  const fl::ustring_view name = lexer_.textOf(token_);
  if (name == u"get" || name == u"set") token_ = lexer_.extendToAccessorName(token_);
  return takeIdentifier();
}

// [a, b c]
Parser::NodeList<Parser::Node> Parser::parseOutputs() {
  ListBuilder<Node> outputs(*this);
  Bracket bracket(*this, BracketType::list);
  while (is(TokenKind::Identifier)) {
    outputs.add(takeIdentifier());
    if (!accept(TokenKind::Comma)) continue;
    if (!is(TokenKind::Identifier)) fail("the name of an output");
  }
  bracket.close();
  return outputs.take();
}

// (obj, ~, value)
Parser::NodeList<Parser::Node> Parser::parseInputs() {
  ListBuilder<Node> inputs(*this);
  Bracket bracket(*this, BracketType::plain);
  if (!is(TokenKind::CloseParenthesis)) {
    do {
      if (!is(TokenKind::Identifier) && !is(TokenKind::Tilde)) {
        fail("the name of an input or `~`");
        break;
      }
      auto* input = makeNode<astapi::InputArgument>(NodeKind::InputArgument, token_.begin);
      if (is(TokenKind::Tilde)) {
        input->ignored = takeLeaf(NodeKind::Ignored);
      } else {
        input->identifier = takeIdentifier();
      }
      inputs.add(finish(input));
    } while (accept(TokenKind::Comma));
  }
  bracket.close();
  return inputs.take();
}

}  // namespace ca
