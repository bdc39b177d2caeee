// The tokens of a C++ file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

enum class TokenType { word, number, character, text, symbol };

struct Token {
  TokenType type = TokenType::symbol;
  std::string_view text;
  Span span;
  // Of a bracket: the index of the other one of its pair. Of others: their own index.
  std::size_t partner = 0;
  // The index of the bracket around it, or none.
  std::size_t parent = 0;
};

// Token indexes of the first and the last token of a part of the file.
struct Part {
  std::size_t first = 0;
  std::size_t last = 0;
};

// Comments and preprocessor directives are left out. The file must be formatted: the spaces around
// an operator distinguish `a < b` from `vector<int>` and `a & b` from `int& a`.
class Source {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  // The text must outlive it.
  explicit Source(std::string_view text);

  std::size_t size() const { return tokens_.size(); }
  // A token without text for an index behind the last one, and for `none`.
  const Token& operator[](std::size_t index) const;
  bool is(std::size_t index, std::string_view text) const { return (*this)[index].text == text; }

  bool isBinaryOperator(std::size_t index) const;
  // The operands of a binary operator, which end at operators of no higher precedence.
  Part operandBefore(std::size_t index) const;
  Part operandAfter(std::size_t index) const;

  // The semicolon at the end of the statement that begins with this token.
  std::size_t endOfStatement(std::size_t first) const;
  // The semicolon or the end of the body of the declaration that begins with this token.
  std::size_t endOfDeclaration(std::size_t first) const;
  // The parts between the commas in a pair of brackets.
  std::vector<Part> split(std::size_t bracket) const;

  Span spanOf(const Part& part) const;
  std::string textOf(const Part& part) const;
  std::size_t lineAt(std::size_t offset) const;

 private:
  void readTokens();
  void pairBrackets();
  bool endsOperand(std::size_t index, std::size_t ofOperator) const;

  std::string_view text_;
  std::vector<Token> tokens_;
};

}  // namespace mutants
