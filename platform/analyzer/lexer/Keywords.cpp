#include "platform/analyzer/lexer/Keywords.h"

#include <cstring>

namespace ca {
namespace {

// A comparison of bytes of a known length compiles to a few wide instructions.
template <std::size_t size>
bool isWord(fl::ustring_view name, const char16_t (&keyword)[size]) {
  constexpr std::size_t length = size - 1;
  return name.size() == length && std::memcmp(name.data(), keyword, length * sizeof(char16_t)) == 0;
}

template <std::size_t size>
TokenKind pick(fl::ustring_view name, const char16_t (&keyword)[size], TokenKind kind) {
  return isWord(name, keyword) ? kind : TokenKind::Identifier;
}

TokenKind beginningWithC(fl::ustring_view name) {
  switch (name.size()) {
    case 4:
      return pick(name, u"case", TokenKind::Case);
    case 5:
      return pick(name, u"catch", TokenKind::Catch);
    default:
      if (isWord(name, u"classdef")) return TokenKind::Classdef;
      return pick(name, u"continue", TokenKind::Continue);
  }
}

TokenKind beginningWithE(fl::ustring_view name) {
  switch (name.size()) {
    case 3:
      return pick(name, u"end", TokenKind::End);
    case 4:
      return pick(name, u"else", TokenKind::Else);
    default:
      return pick(name, u"elseif", TokenKind::ElseIf);
  }
}

}  // namespace

TokenKind compareWithKeywords(fl::ustring_view name) {
  switch (name[0]) {
    case u'b':
      return pick(name, u"break", TokenKind::Break);
    case u'c':
      return beginningWithC(name);
    case u'e':
      return beginningWithE(name);
    case u'f':
      if (name.size() == 3) return pick(name, u"for", TokenKind::For);
      return pick(name, u"function", TokenKind::Function);
    case u'g':
      return pick(name, u"global", TokenKind::Global);
    case u'i':
      return pick(name, u"if", TokenKind::If);
    case u'o':
      return pick(name, u"otherwise", TokenKind::Otherwise);
    case u'p':
      if (name.size() == 6) return pick(name, u"parfor", TokenKind::Parfor);
      return pick(name, u"persistent", TokenKind::Persistent);
    case u'r':
      return pick(name, u"return", TokenKind::Return);
    case u's':
      if (name.size() == 4) return pick(name, u"spmd", TokenKind::Spmd);
      return pick(name, u"switch", TokenKind::Switch);
    case u't':
      return pick(name, u"try", TokenKind::Try);
    case u'w':
      return pick(name, u"while", TokenKind::While);
    default:
      return TokenKind::Identifier;
  }
}

}  // namespace ca
