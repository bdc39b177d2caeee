#include "platform/analyzer/lexer/Lexer.h"

#include "platform/analyzer/lexer/Keywords.h"
#include "platform/analyzer/lexer/TokenStart.h"
#include "platform/analyzer/text/CharacterClass.h"
#include "platform/text/Letters.h"

namespace ca {

namespace {

constexpr char16_t byteOrderMark = 0xFEFF;

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

// --- tokens ---

// Reads most tokens, which are names and single characters after at most one run of blanks, without
// a function call; all others go to the general functions.
void Lexer::scan(std::uint32_t from, Token& token) {
  token.blankBefore = false;
  char16_t c = text_[from];
  if (c == u' ') {
    token.blankBefore = true;
    c = text_[++from];
    if (c == u' ') {
      const std::uint32_t end = map_->findNearBlanksEnd(from);
      if (end != 0) from = end;
      c = text_[from];
    }
  }
  token.begin = from;
  const TokenStart& start = startOf(c);
  if (start.type == TokenStartType::single) {
    token.kind = start.kind;
    token.end = from + 1;
    return;
  }
  if (start.type != TokenStartType::name) return scanFurther(token);
  const std::uint32_t end = map_->findNearNameEnd(from);
  if (end == 0 || text_[end] >= 128) return scanName(token);
  token.end = end;
  token.kind = TokenKind::Identifier;
  if (mayBeKeyword(c, end - from)) token.kind = compareWithKeywords(textOf(token));
}

// The general case: skips blanks, comments and continuations from `token.begin`, then reads a
// token.
void Lexer::scanFurther(Token& token) {
  std::uint32_t position = token.begin;
  if (position == 0 && size_ > 0 && text_[0] == byteOrderMark) ++position;
  for (;;) {
    token.begin = position;
    token.end = position + 1;
    const TokenStart& start = startOf(text_[position]);
    switch (start.type) {
      case TokenStartType::single:
        token.kind = start.kind;
        return;
      case TokenStartType::name:
        return scanName(token);
      case TokenStartType::blank:
        position = skipBlanks(position);
        break;
      case TokenStartType::lineEnd:
        token.kind = TokenKind::LineEnd;
        token.end = skipLineEnds(position);
        return;
      case TokenStartType::comment:
        position = skipComment(position);
        break;
      case TokenStartType::operation:
        if (!isContinuationAt(position)) return scanOperator(token);
        position = skipLine(position);
        break;
      case TokenStartType::nul:
        token.kind = TokenKind::EndOfText;
        token.end = position;
        if (position >= size_) return;
        ++position;  // Reported once for the whole text.
        break;
      case TokenStartType::wide:
        return scanWide(token);
    }
    token.blankBefore = true;
  }
}

void Lexer::scanName(Token& token) const {
  token.end = nameEnd(token.begin);
  const fl::ustring_view name = textOf(token);
  token.kind = mayBeKeyword(name[0], token.end - token.begin) ? compareWithKeywords(name)
                                                              : TokenKind::Identifier;
}

void Lexer::scanWide(Token& token) const {
  if (wideLetterLength(token.begin) != 0) return scanName(token);
  token.kind = TokenKind::Invalid;
  if (isHighSurrogate(text_[token.begin]) && isLowSurrogate(text_[token.end])) ++token.end;
}

std::uint32_t Lexer::nameEnd(std::uint32_t position) const {
  for (;;) {
    position = map_->findNameEnd(position);
    const std::uint32_t length = text_[position] < 128 ? 0 : wideLetterLength(position);
    if (length == 0) return position;
    position += length;
  }
}

Token Lexer::extendName(Token first, std::uint32_t parts) const {
  for (; parts > 0 && text_[first.end] == u'.' && isLetterAt(first.end + 1); --parts) {
    first.end = nameEnd(first.end + 1);
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

// The operators of more than one character, and those that are the beginning of one.
void Lexer::scanOperator(Token& token) const {
  const char16_t next = text_[token.begin + 1];
  const auto pick = [&](char16_t second, TokenKind pair, TokenKind single) {
    token.kind = next == second ? pair : single;
    if (next == second) ++token.end;
  };
  switch (text_[token.begin]) {
    case u'~':
      return pick(u'=', TokenKind::NotEqual, TokenKind::Tilde);
    case u'=':
      return pick(u'=', TokenKind::Equal, TokenKind::Assign);
    case u'<':
      return pick(u'=', TokenKind::LessEqual, TokenKind::Less);
    case u'>':
      return pick(u'=', TokenKind::GreaterEqual, TokenKind::Greater);
    case u'&':
      return pick(u'&', TokenKind::AndAnd, TokenKind::And);
    case u'|':
      return pick(u'|', TokenKind::OrOr, TokenKind::Or);
    case u'.':
      return scanPoint(token);
    default:
      token.kind = startOf(text_[token.begin]).kind;
  }
}

void Lexer::scanPoint(Token& token) const {
  const char16_t next = text_[token.begin + 1];
  token.kind = isDigit(next) ? TokenKind::Number : TokenKind::Dot;
  if (next == u'*' || next == u'/' || next == u'\\') token.kind = TokenKind::Multiplicative;
  if (next == u'^') token.kind = TokenKind::Power;
  if (next == u'\'') token.kind = TokenKind::DotQuote;
  if (token.kind != TokenKind::Number && token.kind != TokenKind::Dot) ++token.end;
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

std::uint32_t Lexer::skipBlanks(std::uint32_t position) const {
  ++position;
  // Usually there is only one.
  return isBlank(text_[position]) ? map_->findBlanksEnd(position) : position;
}

std::uint32_t Lexer::skipLine(std::uint32_t position) const {
  position = map_->findLineEnd(position);
  return position < size_ ? position + 1 : position;
}

std::uint32_t Lexer::skipLineEnds(std::uint32_t position) {
  std::uint32_t end = position;
  for (;;) {
    switch (text_[position]) {
      case u'\n':
        end = ++position;
        position = map_->findBlanksEnd(position);
        break;
      case u'%':
        position = skipComment(position);
        break;
      default:
        return end;
    }
  }
}

std::uint32_t Lexer::skipComment(std::uint32_t position) {
  if (text_[position + 1] == u'{' && isBlockCommentLine(position, u'{')) {
    return skipBlockComment(position);
  }
  return map_->findLineEnd(position);
}

bool Lexer::isBlockCommentLine(std::uint32_t position, char16_t mark) const {
  if (text_[position + 1] != mark) return false;
  if (!isFirstOnLine(position)) return false;
  const std::uint32_t next = map_->findBlanksEnd(position + 2);
  return next >= size_ || text_[next] == u'\n';
}

bool Lexer::isFirstOnLine(std::uint32_t position) const {
  for (; position > 0 && text_[position - 1] != u'\n'; --position) {
    const char16_t c = text_[position - 1];
    const bool isMark = position == 1 && c == byteOrderMark;
    if (!isBlank(c) && !isMark) return false;
  }
  return true;
}

// Skips from the `%` of the opening line to the end of the closing line.
std::uint32_t Lexer::skipBlockComment(std::uint32_t position) {
  const std::uint32_t opening = position;
  unsigned depth = 1;
  for (;;) {
    position = map_->findLineEnd(position);
    if (position >= size_) break;
    position = map_->findBlanksEnd(position + 1);
    if (text_[position] != u'%') continue;
    if (isBlockCommentLine(position, u'{')) {
      ++depth;
    } else if (isBlockCommentLine(position, u'}') && --depth == 0) {
      return map_->findLineEnd(position);
    }
  }
  errors_->reportLexicalError(opening,
                              "expected `%}` to close the block comment, found end of file");
  return size_;
}

std::uint32_t Lexer::skipBlanksAndContinuations(std::uint32_t from) const {
  for (;;) {
    if (isBlank(text_[from])) {
      from = skipBlanks(from);
    } else if (isContinuationAt(from)) {
      from = skipLine(from);
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
  Token operation{.begin = first, .end = first + 1};
  scanOperator(operation);
  return !isBlank(text_[operation.end]) && !isContinuationAt(operation.end);
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
