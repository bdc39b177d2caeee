// Functions, nested functions and signatures.
#include "platform/analyzer/parser/ParserScopes.h"

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

void Parser::parseFunctionBody(astapi::FunctionDefinition& function) {
  Level level(*this);
  function.argumentBlocks = parseArgumentBlocks();
  function.body = parseStatements(BodyType::functionBody);
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
