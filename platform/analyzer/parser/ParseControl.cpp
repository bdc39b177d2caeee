// Control statements.
#include "platform/analyzer/parser/ParserScopes.h"
#include "platform/analyzer/text/CharacterClass.h"

namespace ca {

// if condition ... elseif condition ... else ... end
const Parser::Node* Parser::parseIf() {
  const Token opening = token_;
  auto* statement = makeNode<astapi::IfStatement>(NodeKind::IfStatement, opening.begin);
  advance();
  statement->condition = parseExpression();
  recover();
  statement->body = parseBody(BodyType::ifBody);
  ListBuilder<Node> elseIfs(*this);
  while (is(TokenKind::ElseIf)) {
    elseIfs.add(parseConditionalClause(NodeKind::ElseIfClause, BodyType::ifBody));
  }
  statement->elseIfs = elseIfs.take();
  if (is(TokenKind::Else))
    statement->otherwise = parseListClause(NodeKind::ElseClause, BodyType::plain);
  expectEnd(opening, "if");
  return finish(statement);
}

astapi::ConditionalBody* Parser::parseConditionalClause(NodeKind kind, BodyType type) {
  auto* clause = makeNode<astapi::ConditionalBody>(kind, token_.begin);
  advance();
  clause->condition = parseExpression();
  recover();
  clause->body = parseBody(type);
  return finish(clause);
}

const Parser::Node* Parser::parseListClause(NodeKind kind, BodyType type) {
  auto* clause = makeNode<astapi::ListNode>(kind, token_.begin);
  advance();
  clause->elements = parseBody(type);
  return finish(clause);
}

// for variable = range ... end
const Parser::Node* Parser::parseFor() {
  const Token opening = token_;
  const bool isParallel = is(TokenKind::Parfor);
  auto* loop = makeNode<astapi::ForStatement>(NodeKind::ForStatement, opening.begin);
  advance();
  if (is(TokenKind::OpenParenthesis)) {
    Bracket bracket(*this, BracketType::plain);
    parseForHead(*loop);
    if (isParallel && !failed_ && accept(TokenKind::Comma)) {
      ListBuilder<Node> limit(*this);
      limit.add(parseExpression());
      loop->limit = limit.take();
    }
    bracket.close();
  } else {
    parseForHead(*loop);
  }
  recover();
  loop->body = parseBody(BodyType::plain);
  expectEnd(opening, isParallel ? "parfor" : "for");
  return finish(loop);
}

// variable = range, where the variable is a name with or without indices.
void Parser::parseForHead(astapi::ForStatement& loop) {
  if (!is(TokenKind::Identifier)) {
    fail("the variable of the loop");
    loop.variable = loop.range = makeMissing();
    return;
  }
  loop.variable = parseIndexed(takeIdentifier());
  if (!failed_) checkTargets(*loop.variable);
  loop.range = expect(TokenKind::Assign, "`=` behind the variable of the loop") ? parseExpression()
                                                                                : makeMissing();
}

const Parser::Node* Parser::parseWhile() {
  const Token opening = token_;
  auto* loop = parseConditionalClause(NodeKind::WhileStatement, BodyType::plain);
  expectEnd(opening, "while");
  return finish(loop);
}

// switch subject case value ... otherwise ... end
const Parser::Node* Parser::parseSwitch() {
  const Token opening = token_;
  auto* statement = makeNode<astapi::SwitchStatement>(NodeKind::SwitchStatement, opening.begin);
  advance();
  statement->subject = parseExpression();
  recover();
  skipSeparators();
  if (!is(TokenKind::Case) && !is(TokenKind::Otherwise) && !is(TokenKind::End)) {
    fail("`case`, `otherwise` or `end`");
    recover();
    // The statements before the first case are parsed and dropped.
    parseBody(BodyType::caseBody);
  }
  ListBuilder<Node> cases(*this);
  while (is(TokenKind::Case)) {
    cases.add(parseConditionalClause(NodeKind::CaseClause, BodyType::caseBody));
  }
  statement->cases = cases.take();
  if (is(TokenKind::Otherwise)) {
    statement->otherwise = parseListClause(NodeKind::OtherwiseClause, BodyType::plain);
  }
  expectEnd(opening, "switch");
  return finish(statement);
}

// try ... catch identifier ... end
const Parser::Node* Parser::parseTry() {
  const Token opening = token_;
  auto* statement = makeNode<astapi::TryStatement>(NodeKind::TryStatement, opening.begin);
  advance();
  statement->body = parseBody(BodyType::tryBody);
  if (is(TokenKind::Catch)) statement->catchClause = parseCatch();
  expectEnd(opening, "try");
  return finish(statement);
}

// The word after `catch` is its identifier if it is alone on the line; otherwise it begins a
// statement.
const Parser::Node* Parser::parseCatch() {
  auto* clause = makeNode<astapi::CatchClause>(NodeKind::CatchClause, token_.begin);
  advance();
  if (is(TokenKind::Identifier)) {
    const std::uint32_t next = lexer_.skipBlanksAndContinuations(token_.end);
    const char16_t c = lexer_.at(next);
    if (c == u'\n' || c == u';' || c == u',' || c == u'%' || next >= lexer_.size()) {
      clause->identifier = takeIdentifier();
    }
  }
  clause->body = parseBody(BodyType::plain);
  return finish(clause);
}

// spmd (arguments) ... end
const Parser::Node* Parser::parseSpmd() {
  const Token opening = token_;
  auto* statement = makeNode<astapi::SpmdStatement>(NodeKind::SpmdStatement, opening.begin);
  advance();
  if (is(TokenKind::OpenParenthesis)) statement->arguments = parseArguments();
  recover();
  statement->body = parseBody(BodyType::plain);
  expectEnd(opening, "spmd");
  return finish(statement);
}

}  // namespace ca
