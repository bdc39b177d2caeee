// The tokens of the language.
#pragma once

#include <cstdint>

namespace ca {

enum class TokenKind : std::uint8_t {
  EndOfText,
  LineEnd,  // one or more, with the blank lines and comments between them
  Semicolon,
  Comma,
  Identifier,
  Number,
  Quote,        // opens a character literal or transposes: the grammar decides
  DoubleQuote,  // opens a string literal
  OpenParenthesis,
  CloseParenthesis,
  OpenBracket,
  CloseBracket,
  OpenBrace,
  CloseBrace,
  Dot,
  DotQuote,
  At,
  Question,
  Assign,
  Tilde,
  Invalid,  // a character that starts no token

  // Binary operators, from here through Power.
  OrOr,
  AndAnd,
  Or,
  And,
  Less,
  LessEqual,
  Greater,
  GreaterEqual,
  Equal,
  NotEqual,
  Colon,
  Plus,
  Minus,
  Multiplicative,  // * .* / ./ \ .\ , one kind in the tree
  Power,           // ^ .^

  // Keywords, from here on.
  Break,
  Case,
  Catch,
  Classdef,
  Continue,
  Else,
  ElseIf,
  End,
  For,
  Function,
  Global,
  If,
  Otherwise,
  Parfor,
  Persistent,
  Return,
  Spmd,
  Switch,
  Try,
  While,
};

constexpr bool isKeyword(TokenKind kind) { return kind >= TokenKind::Break; }

// Positions are indices of UTF-16 code units; `end` is just after the token.
struct Token {
  TokenKind kind = TokenKind::EndOfText;
  // Whether a blank or a continuation separates the token from the one before it.
  bool blankBefore = false;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

}  // namespace ca
