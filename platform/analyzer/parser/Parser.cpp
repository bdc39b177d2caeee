#include "platform/analyzer/parser/Parser.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "platform/analyzer/parser/ParserScopes.h"
#include "platform/text/Conversions.h"

namespace ca {

namespace {

// Bounds the memory for a text that consists of errors.
constexpr std::size_t maximumErrors = 10000;

constexpr std::size_t longestQuotedText = 40;

bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

bool endsOperand(TokenKind kind) {
  switch (kind) {
    case TokenKind::Identifier:
    case TokenKind::Number:
    case TokenKind::CloseParenthesis:
    case TokenKind::CloseBracket:
    case TokenKind::CloseBrace:
    case TokenKind::DotQuote:
    case TokenKind::End:
      return true;
    default:
      return false;
  }
}

// Words that begin a statement or a part of one, and are never part of an expression.
bool beginsStatement(TokenKind kind) { return isKeyword(kind) && kind != TokenKind::End; }

}  // namespace

Parser::Parser(fl::ustring_view text, ParserMemory& memory, Arena& arena, const TextNames& names,
               FunctionStyleType style)
    : lexer_(text, memory.map(), *this),
      memory_(memory),
      arena_(arena),
      names_(names),
      style_(style),
      scratch_(memory.elements()) {}

Parser::Result Parser::parse() {
  auto* root = makeNode<astapi::ListNode>(NodeKind::SourceText, 0);
  root->lastPosition = lexer_.size() - 1;
  token_ = lexer_.scan(0);
  ListBuilder<Node> elements(*this);
  parseFile(elements);
  root->elements = elements.take();
  reportNulCharacters();
  sortErrors();
  return {
      .root = root, .classdef = classdef_, .errors = std::move(errors_), .isTooDeep = isTooDeep_};
}

// --- tokens ---

bool Parser::expect(TokenKind kind, const char* what) {
  if (accept(kind)) return true;
  fail(what);
  return false;
}

// --- nodes ---

Parser::Identifier* Parser::makeIdentifier(const Token& token) {
  auto* identifier = makeNode<Identifier>(NodeKind::Identifier, token.begin);
  identifier->lastPosition = token.end - 1;
  const fl::ustring_view text = lexer_.textOf(token);
  identifier->text = astapi::SourceText(text);
  identifier->id = astapi::StringId(text, &names_);
  return identifier;
}

Parser::Identifier* Parser::takeIdentifier() {
  Identifier* identifier = makeIdentifier(token_);
  advance();
  return identifier;
}

Parser::Identifier* Parser::takeDottedName() {
  token_ = lexer_.extendToDottedName(token_);
  return takeIdentifier();
}

Parser::Identifier* Parser::makeNameless() {
  return makeIdentifier(Token{.begin = lastEnd_, .end = lastEnd_});
}

Parser::Node* Parser::takeLeaf(NodeKind kind) {
  auto* leaf = makeNode<astapi::Leaf>(kind, token_.begin);
  advance();
  return finish(leaf);
}

// --- errors ---

std::string Parser::textOf(const Token& token) const {
  const fl::ustring_view text = lexer_.textOf(token);
  fl::ustring_view shown = text.substr(0, std::min(longestQuotedText, text.find(u'\n')));
  // A cut inside a surrogate pair drops its first half.
  if (shown.size() < text.size() && !shown.empty() && shown.back() >= 0xD800 &&
      shown.back() < 0xDC00) {
    shown.remove_suffix(1);
  }
  fl::ustring printable(shown);
  std::replace_if(printable.begin(), printable.end(), isControl, u' ');
  return fmt::format("`{}{}`", fl::i18n::to_string(printable),
                     shown.size() < text.size() ? "..." : "");
}

std::string Parser::describe(const Token& token) const {
  switch (token.kind) {
    case TokenKind::EndOfText:
      return "end of file";
    case TokenKind::LineEnd:
      return "end of line";
    case TokenKind::Number: {
      Token number = token;
      number.end = std::max(lexer_.scanNumber(token.begin).end, token.end);
      return textOf(number);
    }
    case TokenKind::Invalid: {
      const char16_t unit = lexer_.at(token.begin);
      const auto code = static_cast<unsigned>(unit);
      if (token.end == token.begin + 1 && unit >= 0xD800 && unit < 0xE000) {
        return fmt::format("half of a surrogate pair (U+{:04X})", code);
      }
      if (isControl(unit)) return fmt::format("the character U+{:04X}, which begins nothing", code);
      return fmt::format("the character {}, which begins nothing", textOf(token));
    }
    default:
      return textOf(token);
  }
}

unsigned Parser::lineOf(std::uint32_t position) const {
  unsigned line = 1;
  for (std::uint32_t at = 0; at < position; ++at) line += lexer_.at(at) == u'\n' ? 1 : 0;
  return line;
}

void Parser::report(std::uint32_t position, std::string message) {
  if (isTooDeep_ || errors_.size() >= maximumErrors) return;
  errors_.push_back({position, std::move(message)});
}

// Sorts by position; of several errors at one position the first stays.
void Parser::sortErrors() {
  const auto isBefore = [](const auto& left, const auto& right) {
    return left.position < right.position;
  };
  std::stable_sort(errors_.begin(), errors_.end(), isBefore);
  const auto isSamePlace = [](const auto& left, const auto& right) {
    return left.position == right.position;
  };
  errors_.erase(std::unique(errors_.begin(), errors_.end(), isSamePlace), errors_.end());
}

void Parser::reportLexicalError(std::uint32_t position, const char* message) {
  if (!isSkipping_) report(position, message);
}

void Parser::reportNulCharacters() {
  if (!memory_.map().mayHoldNul()) return;
  for (std::uint32_t at = 0; at < lexer_.size(); ++at) {
    if (lexer_.at(at) == 0) report(at, "expected text, found the character U+0000");
  }
}

void Parser::fail(std::string_view expected) {
  if (failed_) return;
  failed_ = true;
  report(token_.begin, fmt::format("expected {}, found {}", expected, describe(token_)));
  skipToSafePlace();
}

void Parser::skipToken(TokenKind& previous) {
  switch (token_.kind) {
    case TokenKind::Quote:
      // The quote of a transpose begins no literal.
      if (endsOperand(previous) && !token_.blankBefore) break;
      [[fallthrough]];
    case TokenKind::DoubleQuote:
      token_ = lexer_.scanLiteral(token_.begin, token_.blankBefore);
      break;
    case TokenKind::Number:
      token_.end = std::max(lexer_.scanNumber(token_.begin).end, token_.end);
      break;
    default:
      break;
  }
  previous = token_.kind;
  advance();
}

// Skips to the end of the statement or declaration. Inside a list this is after its closing
// bracket, unless a keyword shows that the list was never closed. Parentheses end with their line,
// unless the next line begins with the bracket that closes them.
void Parser::skipToSafePlace() {
  isSkipping_ = true;
  std::vector<BracketType> open = openBrackets();
  TokenKind previous = TokenKind::Comma;
  for (; !is(TokenKind::EndOfText); skipToken(previous)) {
    if (previous != TokenKind::Dot) {
      if (beginsStatement(token_.kind)) break;
      if (is(TokenKind::End) && (open.empty() || lexer_.isFirstOnLine(token_.begin))) break;
    }
    if (is(TokenKind::LineEnd) && !open.empty() && open.back() != BracketType::list) {
      const TokenKind next = lexer_.scan(token_.end).kind;
      const bool closesNext = next == TokenKind::CloseParenthesis || next == TokenKind::CloseBrace;
      while (!closesNext && !open.empty() && open.back() != BracketType::list) open.pop_back();
    }
    if (open.empty() && isSeparator()) break;
    countBracket(open);
  }
  isSkipping_ = false;
}

std::vector<Parser::BracketType> Parser::openBrackets() const {
  std::vector<BracketType> open;
  for (const Bracket* bracket = innermost_; bracket != nullptr; bracket = bracket->outer()) {
    open.push_back(bracket->type());
  }
  std::ranges::reverse(open);
  return open;
}

void Parser::countBracket(std::vector<BracketType>& open) const {
  switch (token_.kind) {
    case TokenKind::OpenParenthesis:
      open.push_back(BracketType::plain);
      break;
    case TokenKind::OpenBracket:
    case TokenKind::OpenBrace:
      open.push_back(BracketType::list);
      break;
    case TokenKind::CloseParenthesis:
      if (!open.empty() && open.back() != BracketType::list) open.pop_back();
      break;
    case TokenKind::CloseBracket:
    case TokenKind::CloseBrace:
      if (!open.empty()) open.pop_back();
      break;
    default:
      break;
  }
}

void Parser::giveUp() {
  isTooDeep_ = true;
  failed_ = true;
  token_ = Token{.begin = lexer_.size(), .end = lexer_.size()};
}

void Parser::expectEnd(const Token& opening, const char* what) {
  if (accept(TokenKind::End) || toldOfMissingEnd_) return;
  toldOfMissingEnd_ = is(TokenKind::EndOfText);
  report(token_.begin, fmt::format("expected `end` to close `{}` (opened at line {}), found {}",
                                   what, lineOf(opening.begin), describe(token_)));
}

}  // namespace ca
