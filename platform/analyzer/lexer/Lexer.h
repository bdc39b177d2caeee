// Splits a text into tokens, one at a time and on demand: the meaning of a quote or a blank depends
// on the grammar, which only the parser knows.
#pragma once

#include <cstdint>

#include "platform/analyzer/lexer/NumericValue.h"
#include "platform/analyzer/lexer/Token.h"
#include "platform/analyzer/text/CharacterMap.h"
#include "platform/text/UString.h"

namespace ca {

// Receives the errors inside tokens.
class LexicalErrors {
 public:
  // `message` is a whole sentence about the character at `position`.
  virtual void reportLexicalError(std::uint32_t position, const char* message) = 0;

 protected:
  ~LexicalErrors() = default;
};

// `text` must be followed by a NUL, as that of a string is. The text and its map must outlive the
// lexer.
class Lexer {
 public:
  Lexer(fl::ustring_view text, const CharacterMap& map, LexicalErrors& errors)
      : text_(text.data()),
        size_(static_cast<std::uint32_t>(text.size())),
        map_(&map),
        errors_(&errors) {}

  // The token at `from`, or the next one after blanks and comments.
  void scan(std::uint32_t from, Token& token);
  Token scan(std::uint32_t from) {
    Token token;
    scan(from, token);
    return token;
  }

  // The literal that opens at the quote at `begin`; an unclosed one ends with its line.
  Token scanLiteral(std::uint32_t begin, bool blankBefore);

  // The identifier token `first` with all the `.name` that follow without a blank.
  Token extendToDottedName(Token first) const { return extendName(first, UINT32_MAX); }
  // The same with at most one `.name`.
  Token extendToAccessorName(Token first) const { return extendName(first, 1); }

  // The value of the number token at `begin`, and where its digits and suffix end.
  struct Number {
    lf::astapi::NumericValue<void> value;
    std::uint32_t end = 0;
    bool fits = true;
  };
  Number scanNumber(std::uint32_t begin) const;

  // Whether the identifier that ends at `nameEnd` and begins a statement is the name of a command.
  bool isCommandBehind(std::uint32_t nameEnd) const;
  // The next word of a command at or after `from`; an empty range at the end of the command.
  struct Word {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };
  Word scanCommandWord(std::uint32_t from) const;

  // The first code unit after the blanks and continuations that begin at `from`.
  std::uint32_t skipBlanksAndContinuations(std::uint32_t from) const;
  // Whether there is a blank, a continuation or a line end at `position`.
  bool isBlankAt(std::uint32_t position) const;
  bool isLetterAt(std::uint32_t position) const;
  // Whether there are only blanks before `position` on its line.
  bool isFirstOnLine(std::uint32_t position) const;
  bool isContinuationAt(std::uint32_t position) const {
    return text_[position] == u'.' && text_[position + 1] == u'.' && text_[position + 2] == u'.';
  }

  fl::ustring_view textOf(const Token& token) const {
    return {text_ + token.begin, token.end - token.begin};
  }
  fl::ustring_view text() const { return {text_, size_}; }
  char16_t at(std::uint32_t position) const { return text_[position]; }
  std::uint32_t size() const { return size_; }

 private:
  Token extendName(Token first, std::uint32_t parts) const;
  // Each sets the kind and the end of a token whose beginning is set.
  void scanFurther(Token& token);
  void scanName(Token& token) const;
  void scanWide(Token& token) const;
  void scanOperator(Token& token) const;
  void scanPoint(Token& token) const;
  // The end of the name that begins at `position`.
  std::uint32_t nameEnd(std::uint32_t position) const;
  // The length in code units of a letter beyond ASCII at `position`, or 0.
  std::uint32_t wideLetterLength(std::uint32_t position) const;
  // The position after the blanks that begin at `position`.
  std::uint32_t skipBlanks(std::uint32_t position) const;
  // The position after the line end of the line; a text need not end with one.
  std::uint32_t skipLine(std::uint32_t position) const;
  std::uint32_t skipLineEnds(std::uint32_t position);
  std::uint32_t skipComment(std::uint32_t position);
  std::uint32_t skipBlockComment(std::uint32_t position);
  // Whether the line of the `%` at `position` has only `%` and `mark`.
  bool isBlockCommentLine(std::uint32_t position, char16_t mark) const;
  Number scanBasedNumber(std::uint32_t begin, unsigned bitsPerDigit) const;

  const char16_t* text_;
  std::uint32_t size_;
  const CharacterMap* map_;
  LexicalErrors* errors_;
};

}  // namespace ca
