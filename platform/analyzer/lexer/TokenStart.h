// The kind of token that a first character begins.
#pragma once

#include <array>
#include <cstdint>

#include "platform/analyzer/lexer/Token.h"
#include "platform/analyzer/text/CharacterClass.h"

namespace ca {

enum class TokenStartType : std::uint8_t {
  single,  // a token of one character and of known kind; of a number the first digit
  name,    // an ASCII letter
  blank,
  lineEnd,
  comment,
  operation,  // depends on the next character
  nul,
  wide,  // beyond ASCII
};

struct TokenStart {
  TokenStartType type = TokenStartType::single;
  TokenKind kind = TokenKind::Invalid;
};

namespace characters {

// One entry for each ASCII character, and the last one for all others.
constexpr std::array<TokenStart, 129> makeTokenStarts() {
  std::array<TokenStart, 129> starts{};
  const auto set = [&](char c, TokenKind kind) {
    starts[static_cast<unsigned char>(c)] = {TokenStartType::single, kind};
  };
  set(';', TokenKind::Semicolon);
  set(',', TokenKind::Comma);
  set('\'', TokenKind::Quote);
  set('"', TokenKind::DoubleQuote);
  set('(', TokenKind::OpenParenthesis);
  set(')', TokenKind::CloseParenthesis);
  set('[', TokenKind::OpenBracket);
  set(']', TokenKind::CloseBracket);
  set('{', TokenKind::OpenBrace);
  set('}', TokenKind::CloseBrace);
  set('@', TokenKind::At);
  set('?', TokenKind::Question);
  set(':', TokenKind::Colon);
  set('+', TokenKind::Plus);
  set('-', TokenKind::Minus);
  set('*', TokenKind::Multiplicative);
  set('/', TokenKind::Multiplicative);
  set('\\', TokenKind::Multiplicative);
  set('^', TokenKind::Power);
  for (char c = '0'; c <= '9'; ++c) set(c, TokenKind::Number);
  for (unsigned c = 0; c < table.size(); ++c) {
    if (table[c] == letter) starts[c].type = TokenStartType::name;
    if (table[c] == blank) starts[c].type = TokenStartType::blank;
  }
  for (const unsigned char c : {'~', '=', '<', '>', '&', '|', '.'}) {
    starts[c].type = TokenStartType::operation;
  }
  starts['\n'].type = TokenStartType::lineEnd;
  starts['%'].type = TokenStartType::comment;
  starts[0].type = TokenStartType::nul;
  starts[128].type = TokenStartType::wide;
  return starts;
}

inline constexpr std::array<TokenStart, 129> tokenStarts = makeTokenStarts();

}  // namespace characters

constexpr const TokenStart& startOf(char16_t c) {
  return characters::tokenStarts[c < 128 ? c : 128];
}

}  // namespace ca
