#include "platform/analyzer/Lexer.h"

#include "platform/analyzer/CharacterClass.h"
#include "platform/analyzer/Keywords.h"
#include "platform/analyzer/SourceText.h"
#include "platform/text/Letters.h"

namespace ca {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

// --- the token at a place ---

Token Lexer::scan(std::uint32_t from) {
  Token token;
  std::uint32_t position = from;
  if (position == 0 && size_ > 0 && text_[0] == byteOrderMark) ++position;
  for (;;) {
    const char16_t c = text_[position];
    if (isBlank(c)) {
      ++position;
    } else if (c == u'%') {
      position = skipComment(position);
    } else if (c == u'.' && isContinuationAt(position)) {
      position = findLineEnd(position);
      if (position < size_) ++position;
    } else if (c == 0 && position < size_) {
      ++position;  // Told of once for the whole text.
    } else {
      break;
    }
    token.blankBefore = true;
  }
  token.begin = position;
  token.end = position + 1;
  const char16_t c = text_[position];
  if (isOfClass(c, characters::letter)) return scanName(token);
  switch (c) {
    case u'\n':
      token.kind = TokenKind::LineEnd;
      token.end = skipLineEnds(position);
      return token;
    case u'0':
    case u'1':
    case u'2':
    case u'3':
    case u'4':
    case u'5':
    case u'6':
    case u'7':
    case u'8':
    case u'9':
      token.kind = TokenKind::Number;
      return token;
    case 0:
      token.kind = TokenKind::EndOfText;
      token.end = position;
      return token;
    default:
      break;
  }
  if (c < 128) return scanOperator(token);
  if (wideLetterLength(position) != 0) return scanName(token);
  token.kind = TokenKind::Invalid;
  if (isHighSurrogate(c) && isLowSurrogate(text_[position + 1])) ++token.end;
  return token;
}

Token Lexer::scanName(Token token) const {
  token.hash = astapi::internal::nameHashSeed;
  token.end = nameEnd(token.begin, token.hash);
  token.kind = keywordOrIdentifier(textOf(token));
  return token;
}

std::uint32_t Lexer::nameEnd(std::uint32_t position, std::uint32_t& hash) const {
  for (;;) {
    const char16_t c = text_[position];
    if (isOfClass(c, characters::nameContinuation)) {
      hash = astapi::internal::extendNameHash(hash, c);
      ++position;
      continue;
    }
    const std::uint32_t length = c < 128 ? 0 : wideLetterLength(position);
    if (length == 0) return position;
    for (const std::uint32_t stop = position + length; position < stop; ++position) {
      hash = astapi::internal::extendNameHash(hash, text_[position]);
    }
  }
}

Token Lexer::extendName(Token first, std::uint32_t parts) const {
  for (; parts > 0 && text_[first.end] == u'.' && isLetterAt(first.end + 1); --parts) {
    first.hash = astapi::internal::extendNameHash(first.hash, u'.');
    first.end = nameEnd(first.end + 1, first.hash);
  }
  return first;
}

std::uint32_t Lexer::wideLetterLength(std::uint32_t position) const {
  const char16_t c = text_[position];
  if (!isHighSurrogate(c)) return !isLowSurrogate(c) && fl::isLetter(c) ? 1 : 0;
  const char16_t low = text_[position + 1];
  if (!isLowSurrogate(low)) return 0;
  const char32_t character = 0x10000U + ((c - 0xD800U) << 10U) + (low - 0xDC00U);
  return fl::isLetter(character) ? 2 : 0;
}

bool Lexer::isLetterAt(std::uint32_t position) const {
  const char16_t c = text_[position];
  return c < 128 ? isOfClass(c, characters::letter) : wideLetterLength(position) != 0;
}

Token Lexer::scanOperator(Token token) const {
  const char16_t next = text_[token.begin + 1];
  const auto one = [&](TokenKind kind) {
    token.kind = kind;
    return token;
  };
  const auto two = [&](TokenKind kind) {
    token.kind = kind;
    ++token.end;
    return token;
  };
  switch (text_[token.begin]) {
    case u';':
      return one(TokenKind::Semicolon);
    case u',':
      return one(TokenKind::Comma);
    case u'\'':
      return one(TokenKind::Quote);
    case u'"':
      return one(TokenKind::DoubleQuote);
    case u'(':
      return one(TokenKind::OpenParenthesis);
    case u')':
      return one(TokenKind::CloseParenthesis);
    case u'[':
      return one(TokenKind::OpenBracket);
    case u']':
      return one(TokenKind::CloseBracket);
    case u'{':
      return one(TokenKind::OpenBrace);
    case u'}':
      return one(TokenKind::CloseBrace);
    case u'@':
      return one(TokenKind::At);
    case u'?':
      return one(TokenKind::Question);
    case u':':
      return one(TokenKind::Colon);
    case u'+':
      return one(TokenKind::Plus);
    case u'-':
      return one(TokenKind::Minus);
    case u'*':
    case u'/':
    case u'\\':
      return one(TokenKind::Multiplicative);
    case u'^':
      return one(TokenKind::Power);
    case u'~':
      return next == u'=' ? two(TokenKind::NotEqual) : one(TokenKind::Tilde);
    case u'=':
      return next == u'=' ? two(TokenKind::Equal) : one(TokenKind::Assign);
    case u'<':
      return next == u'=' ? two(TokenKind::LessEqual) : one(TokenKind::Less);
    case u'>':
      return next == u'=' ? two(TokenKind::GreaterEqual) : one(TokenKind::Greater);
    case u'&':
      return next == u'&' ? two(TokenKind::AndAnd) : one(TokenKind::And);
    case u'|':
      return next == u'|' ? two(TokenKind::OrOr) : one(TokenKind::Or);
    case u'.':
      if (isDigit(next)) return one(TokenKind::Number);
      if (next == u'*' || next == u'/' || next == u'\\') return two(TokenKind::Multiplicative);
      if (next == u'^') return two(TokenKind::Power);
      if (next == u'\'') return two(TokenKind::DotQuote);
      return one(TokenKind::Dot);
    default:
      return one(TokenKind::Invalid);
  }
}

Token Lexer::scanLiteral(std::uint32_t begin, bool blankBefore) {
  const char16_t quote = text_[begin];
  Token token{.kind = quote == u'"' ? TokenKind::DoubleQuote : TokenKind::Quote,
              .blankBefore = blankBefore,
              .begin = begin};
  std::uint32_t position = begin + 1;
  for (;; ++position) {
    const char16_t c = text_[position];
    if (c == quote) {
      ++position;
      if (text_[position] != quote) break;
    } else if (c == u'\n' || (c == 0 && position >= size_)) {
      errors_->reportLexicalError(
          begin, quote == u'"' ? "expected `\"` to close the string literal, found end of line"
                               : "expected `'` to close the character literal, found end of line");
      break;
    }
  }
  token.end = position;
  return token;
}

// --- blanks, line ends, comments ---

std::uint32_t Lexer::findLineEnd(std::uint32_t position) const {
  while (position < size_ && text_[position] != u'\n') ++position;
  return position;
}

std::uint32_t Lexer::skipLineEnds(std::uint32_t position) {
  std::uint32_t end = position;
  for (;;) {
    const char16_t c = text_[position];
    if (c == u'\n') {
      end = ++position;
    } else if (isBlank(c)) {
      ++position;
    } else if (c == u'%') {
      position = skipComment(position);
    } else {
      return end;
    }
  }
}

std::uint32_t Lexer::skipComment(std::uint32_t position) {
  if (text_[position + 1] == u'{' && isBlockCommentLine(position, u'{')) {
    return skipBlockComment(position);
  }
  return findLineEnd(position);
}

bool Lexer::isBlockCommentLine(std::uint32_t position, char16_t mark) const {
  if (text_[position + 1] != mark) return false;
  if (!isFirstOnLine(position)) return false;
  std::uint32_t behind = position + 2;
  while (isBlank(text_[behind])) ++behind;
  return behind >= size_ || text_[behind] == u'\n';
}

bool Lexer::isFirstOnLine(std::uint32_t position) const {
  for (; position > 0 && text_[position - 1] != u'\n'; --position) {
    const char16_t c = text_[position - 1];
    const bool isMark = position == 1 && c == byteOrderMark;
    if (!isBlank(c) && !isMark) return false;
  }
  return true;
}

// Goes from the `%` of the opening line to the end of the closing line.
std::uint32_t Lexer::skipBlockComment(std::uint32_t position) {
  const std::uint32_t opening = position;
  unsigned depth = 1;
  for (;;) {
    position = findLineEnd(position);
    if (position >= size_) break;
    ++position;
    while (isBlank(text_[position])) ++position;
    if (text_[position] != u'%') continue;
    if (isBlockCommentLine(position, u'{')) {
      ++depth;
    } else if (isBlockCommentLine(position, u'}') && --depth == 0) {
      return findLineEnd(position);
    }
  }
  errors_->reportLexicalError(opening,
                              "expected `%}` to close the block comment, found end of file");
  return size_;
}

std::uint32_t Lexer::skipBlanksAndContinuations(std::uint32_t from) const {
  for (;;) {
    if (isBlank(text_[from])) {
      ++from;
    } else if (isContinuationAt(from)) {
      from = findLineEnd(from);
      if (from < size_) ++from;
    } else {
      return from;
    }
  }
}

bool Lexer::isBlankAt(std::uint32_t position) const {
  const char16_t c = text_[position];
  return isBlank(c) || c == u'\n' || isContinuationAt(position);
}

// --- commands ---

bool Lexer::isCommandBehind(std::uint32_t nameEnd) const {
  const std::uint32_t first = skipBlanksAndContinuations(nameEnd);
  if (first == nameEnd || first >= size_) return false;
  const char16_t c = text_[first];
  switch (c) {
    case u'(':
    case u')':
    case u']':
    case u'}':
    case u';':
    case u',':
    case u'%':
    case u'\n':
      return false;
    default:
      break;
  }
  if (!isOfClass(c, characters::operation)) return true;
  if (c == u'=' && text_[first + 1] != u'=') return false;
  const std::uint32_t behind = scanOperator(Token{.begin = first, .end = first + 1}).end;
  return !isBlank(text_[behind]) && !isContinuationAt(behind);
}

Lexer::Word Lexer::scanCommandWord(std::uint32_t from) const {
  from = skipBlanksAndContinuations(from);
  std::uint32_t position = from;
  for (;;) {
    const char16_t c = text_[position];
    if (c == u'\'' || c == u'"') {
      do {
        ++position;
      } while (text_[position] != c && text_[position] != u'\n' && position < size_);
      if (text_[position] != c) break;
      ++position;
    } else if (isBlank(c) || c == u'\n' || c == u';' || c == u',' || c == u'%' ||
               position >= size_ || isContinuationAt(position)) {
      break;
    } else {
      ++position;
    }
  }
  return {from, position};
}

}  // namespace ca
