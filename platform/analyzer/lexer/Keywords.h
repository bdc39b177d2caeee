// Recognises the keywords.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/analyzer/lexer/Token.h"
#include "platform/text/UString.h"

namespace ca {

namespace internal {

// For each small letter the lengths of the keywords that begin with it, one bit for each length.
constexpr std::array<std::uint16_t, 26> makeKeywordLengths() {
  std::array<std::uint16_t, 26> lengths{};
  for (const fl::ustring_view keyword :
       {u"break",      u"case",   u"catch",    u"classdef", u"continue", u"else",      u"elseif",
        u"end",        u"for",    u"function", u"global",   u"if",       u"otherwise", u"parfor",
        u"persistent", u"return", u"spmd",     u"switch",   u"try",      u"while"}) {
    lengths[keyword[0] - u'a'] |= static_cast<std::uint16_t>(1U << keyword.size());
  }
  return lengths;
}

constexpr std::array<std::uint16_t, 26> keywordLengths = makeKeywordLengths();

}  // namespace internal

// Whether some keyword has this first letter and this length.
inline bool mayBeKeyword(char16_t first, std::size_t length) {
  const auto letter = static_cast<unsigned>(first - u'a');
  if (letter >= internal::keywordLengths.size() || length >= 16) return false;
  return (internal::keywordLengths[letter] >> length & 1U) != 0;
}

// The keyword that `name` is, or TokenKind::Identifier. Requires mayBeKeyword.
TokenKind compareWithKeywords(fl::ustring_view name);

}  // namespace ca
