#include "mutants/Source.h"

#include <algorithm>
#include <regex>

namespace mutants {
namespace {

// A group for each type of token, in the order of TokenType; what is in none of them is left out.
const std::regex& tokenPattern() {
  static const std::regex pattern(
      R"(\s+|//[^\n]*|/\*[\s\S]*?\*/|#([^\n\\]|\\[\s\S])*)"
      R"(|((?:u8|[uUL])?R"([^(]*)\([\s\S]*?\)\3"|(?:u8|[uUL])?"(?:[^"\\]|\\.)*"))"
      R"(|((?:u8|[uUL])?'(?:[^'\\]|\\.)+'))"
      R"(|(\d(?:[eEpP][+-]|'?[\w.])*))"
      R"(|([A-Za-z_]\w*))"
      R"(|(<=>|->\*|<<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|&&|\|\||[-+*/%&|^=!<>]=|\S))");
  return pattern;
}

TokenType typeOf(const std::cmatch& match) {
  if (match[2].matched) return TokenType::text;
  if (match[4].matched) return TokenType::character;
  if (match[5].matched) return TokenType::number;
  return match[6].matched ? TokenType::word : TokenType::symbol;
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> others) {
  return std::ranges::find(others, text) != others.end();
}

bool isOpening(const Token& token) { return isOneOf(token.text, {"(", "[", "{"}); }
bool isClosing(const Token& token) { return isOneOf(token.text, {")", "]", "}"}); }

// Lower numbers bind less; 0 is for what is between expressions.
int precedenceOf(std::string_view text) {
  if (isOneOf(text, {",", ";", "return", "throw", "case", "else", "do"})) return 0;
  if (isOneOf(text, {"=", "+=", "-=", "*=", "/=", "|=", "&=", "?", ":"})) return 1;
  if (text == "||") return 2;
  if (text == "&&") return 3;
  if (isOneOf(text, {"|", "^", "&"})) return 4;
  if (isOneOf(text, {"==", "!=", "<", "<=", ">", ">=", "<=>"})) return 5;
  return 6;
}

}  // namespace

Source::Source(std::string_view text) : text_(text) {
  readTokens();
  pairBrackets();
}

void Source::readTokens() {
  const char* const begin = text_.data();
  const char* at = begin;
  std::cmatch match;
  while (std::regex_search(at, begin + text_.size(), match, tokenPattern(),
                           std::regex_constants::match_continuous)) {
    const auto length = static_cast<std::size_t>(match.length());
    const auto start = static_cast<std::size_t>(at - begin);
    at += length;
    const bool isToken = match[2].matched || match[4].matched || match[5].matched ||
                         match[6].matched || match[7].matched;
    if (!isToken) continue;
    tokens_.push_back({typeOf(match),
                       text_.substr(start, length),
                       {start, start + length},
                       tokens_.size(),
                       none});
  }
}

void Source::pairBrackets() {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    if (isClosing(tokens_[i]) && !open.empty()) {
      tokens_[i].partner = open.back();
      tokens_[open.back()].partner = i;
      open.pop_back();
    }
    tokens_[i].parent = open.empty() ? none : open.back();
    if (isOpening(tokens_[i])) open.push_back(i);
  }
}

const Token& Source::operator[](std::size_t index) const {
  static const Token missing;
  return index < tokens_.size() ? tokens_[index] : missing;
}

bool Source::isBinaryOperator(std::size_t index) const {
  const Token& token = (*this)[index];
  if (token.type != TokenType::symbol || index == 0 || token.span.end >= text_.size()) return false;
  const auto isSpace = [&](std::size_t at) { return text_[at] == ' ' || text_[at] == '\n'; };
  const Token& before = tokens_[index - 1];
  return isSpace(token.span.begin - 1) && isSpace(token.span.end) && !isOpening(token) &&
         (before.type != TokenType::symbol || isClosing(before));
}

bool Source::endsOperand(std::size_t index, std::size_t ofOperator) const {
  const int precedence = precedenceOf((*this)[index].text);
  if (precedence > precedenceOf((*this)[ofOperator].text)) return false;
  return precedence < 2 || isBinaryOperator(index);
}

Part Source::operandBefore(std::size_t index) const {
  std::size_t first = index;
  while (first > 0 && !isOpening(tokens_[first - 1]) && !endsOperand(first - 1, index)) {
    first = tokens_[first - 1].partner;
  }
  return {first, index - 1};
}

Part Source::operandAfter(std::size_t index) const {
  std::size_t last = index;
  while (last + 1 < size() && !isClosing(tokens_[last + 1]) && !endsOperand(last + 1, index)) {
    last = tokens_[last + 1].partner;
  }
  return {index + 1, last};
}

std::size_t Source::endOfStatement(std::size_t first) const {
  std::size_t i = first;
  while (i < size() && !is(i, ";") && !isClosing(tokens_[i])) i = tokens_[i].partner + 1;
  return i;
}

std::size_t Source::endOfDeclaration(std::size_t first) const {
  for (std::size_t i = first; i < size() && !isClosing(tokens_[i]); ++i) {
    const bool isBody = is(i, "{") && !is(i - 1, "=") && !is(tokens_[i].partner + 1, ";");
    i = tokens_[i].partner;
    if (isBody || is(i, ";")) return i;
  }
  return first;
}

std::vector<Part> Source::split(std::size_t bracket) const {
  std::vector<Part> parts;
  const std::size_t end = tokens_[bracket].partner;
  std::size_t first = bracket + 1;
  for (std::size_t i = first; i <= end; ++i) {
    if ((i == end || is(i, ",")) && i > first) parts.push_back({first, i - 1});
    if (is(i, ",")) first = i + 1;
    if (i < end) i = tokens_[i].partner;
  }
  return parts;
}

Span Source::spanOf(const Part& part) const {
  return {tokens_[part.first].span.begin, tokens_[part.last].span.end};
}

std::string Source::textOf(const Part& part) const {
  const auto [begin, end] = spanOf(part);
  return std::string(text_.substr(begin, end - begin));
}

std::size_t Source::lineAt(std::size_t offset) const {
  return 1 + static_cast<std::size_t>(std::ranges::count(text_.substr(0, offset), '\n'));
}

}  // namespace mutants
