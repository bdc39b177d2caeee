#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <limits>
#include <optional>
#include <sstream>
#include <string>

#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"
#include "platform/text/Letters.h"
#include "platform/text/Locale.h"
#include "platform/text/ShellText.h"

using namespace std::string_literals;

namespace fl {
namespace {

struct TextCase {
  const char* shows;
  std::string bytes;
  ustring text;
};

// Texts in valid UTF-8.
const TextCase kUtf8Texts[] = {
    {"nothing", "", u""},
    {"ASCII with NUL and both line ends", "a\0b\r\nc\rd"s, u"a\0b\r\nc\rd"s},
    {"a byte order mark is kept", "\xEF\xBB\xBFx", u"\uFEFFx"},
    {"first and last of two bytes", "\xC2\x80\xDF\xBF", u"\u0080\u07FF"},
    {"first and last of three bytes", "\xE0\xA0\x80\xEF\xBF\xBF", u"\u0800\uFFFF"},
    {"just outside of the surrogates", "\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},
    {"first and last of four bytes", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
};

TEST(Text, Utf8RoundTripsAtEveryPlaceInAWord) {
  for (const TextCase& c : kUtf8Texts) {
    for (std::size_t before = 0; before < 70; ++before) {
      const std::string bytes = std::string(before, 'x') + c.bytes + std::string(before % 40, 'y');
      const ustring text = ustring(before, u'x') + c.text + ustring(before % 40, u'y');
      const DecodedText decoded = decodeFileText(bytes);
      ASSERT_EQ(decoded.text, text) << c.shows << " after " << before;
      ASSERT_EQ(decoded.encoding, EncodingType::utf8) << c.shows;
      ASSERT_EQ(encodeFileText(text, EncodingType::utf8), bytes) << c.shows << " after " << before;
      ASSERT_EQ(i18n::to_ustring(bytes), text) << c.shows;
      ASSERT_EQ(i18n::to_string(text), bytes) << c.shows;
    }
  }
}

// Invalid UTF-8, and the results of a conversion that cannot fail.
const TextCase kInvalidBytes[] = {
    {"a continuation byte alone", "\x80", u"\uFFFD"},
    {"a byte that is never valid", "a\xFF", u"a\uFFFD"},
    {"overlong in two bytes", "\xC0\xAF", u"\uFFFD\uFFFD"},
    {"overlong in three bytes", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
    {"overlong in four bytes", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"an encoded surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
    {"beyond the last character", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"cut off at the end", "a\xE2\x82", u"a\uFFFD"},
    {"cut off by a letter", "\xF0\x9F\x98z", u"\uFFFDz"},
    {"valid characters around it stay", "\xC3\xA4\xFC\xC3\xB6", u"\u00E4\uFFFD\u00F6"},
};

TEST(Text, OneInvalidByteMakesTheWholeFileLatin1) {
  for (const TextCase& c : kInvalidBytes) {
    EXPECT_EQ(i18n::to_ustring(c.bytes), c.text) << c.shows;
    const std::string bytes = "\xC3\xA4 " + std::string(40, 'x') + c.bytes + "\xC3\xA4";
    const DecodedText decoded = decodeFileText(bytes);
    EXPECT_EQ(decoded.encoding, EncodingType::latin1) << c.shows;
    EXPECT_EQ(decoded.text.size(), bytes.size()) << c.shows;
    EXPECT_EQ(decoded.text.substr(0, 3), u"\u00C3\u00A4 ") << c.shows;
    EXPECT_EQ(encodeFileText(decoded.text, EncodingType::latin1), bytes) << c.shows;
  }
}

TEST(Text, TextWithoutAnEncodingIsRefused) {
  const ustring high(1, char16_t{0xD83D});
  const ustring low(1, char16_t{0xDE00});
  const struct {
    ustring text;
    std::string replaced;
  } cases[] = {
      {high, "\xEF\xBF\xBD"},
      {low, "\xEF\xBF\xBD"},
      {high + u"a",
       "\xEF\xBF\xBD"
       "a"},
      {low + high, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {high + high + low, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
  };
  for (const auto& c : cases) {
    const ustring text = ustring(20, u'x') + c.text;
    EXPECT_EQ(encodeFileText(text, EncodingType::utf8), std::nullopt);
    EXPECT_EQ(i18n::to_string(text), std::string(20, 'x') + c.replaced);
  }
  EXPECT_EQ(encodeFileText(u"caf\u00E9 \u00FF", EncodingType::latin1), "caf\xE9 \xFF");
  EXPECT_EQ(encodeFileText(ustring(31, u'x') + u"\u0100", EncodingType::latin1), std::nullopt);
}

TEST(Text, Letters) {
  for (const char32_t c : {U'A', U'z', U'\u00AA', U'\u00DF', U'\u01C5', U'\u02B0', U'\u05D0',
                           U'\u3042', U'\u3400', U'\u4E01', U'\u9FFF', U'\uAC00', U'\uD7A3',
                           U'\U00010400', U'\U0001D7CB', U'\U0002A6DF', U'\U000323AF'}) {
    EXPECT_TRUE(isLetter(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
  for (const char32_t c : {U'0', U'_', U'@', U'[', U'`', U'{', U'\u0080', U'\u00D7', U'\u0301',
                           U'\u0660', U'\u2160', U'\u4DC0', U'\uFFFD', U'\U0001F600', U'\U000323B0',
                           U'\U0010FFFF', char32_t{0xD800}, char32_t{0xFFFFFFFF}}) {
    EXPECT_FALSE(isLetter(c)) << std::hex << static_cast<std::uint32_t>(c);
  }
}

TEST(Text, Identifiers) {
  for (const char16_t* name :
       {u"a", u"Mixer2_", u"end", u"\u00FCber", u"x\u4E01", u"\U00010400z"}) {
    EXPECT_TRUE(isIdentifier(name)) << i18n::to_string(name);
  }
  for (const char16_t* name :
       {u"", u"_a", u"2a", u"a b", u"a.b", u"a/b", u"a\u0660", u"a\U0001F600", u"a-", u".."}) {
    EXPECT_FALSE(isIdentifier(name)) << i18n::to_string(name);
  }
  EXPECT_FALSE(isIdentifier(u"a\0"s));
  EXPECT_FALSE(isIdentifier(u"a" + ustring(1, char16_t{0xD801})));
}

TEST(Text, ShellWordsAreQuotedOnlyIfTheyMustBe) {
  const std::string plain = "azAZ09_./+,:@%-\u00e4";
  EXPECT_EQ(makeShellWord(plain), plain);
  for (const char* other : {"", "a b", "`", "{", "[", "~", "a;", "*"}) {
    EXPECT_EQ(makeShellWord(other), "'" + std::string(other) + "'");
  }
  EXPECT_EQ(makeShellWord("it's"), "'it'\\''s'");
}

TEST(Text, TheCharacterFacetIsThatOfAscii) {
  using std::ctype_base;
  const std::locale locale = i18n::facet::get_global_std_locale();
  const auto& facet = std::use_facet<std::ctype<char16_t>>(locale);
  ustring text = u"a1 Z\u00e9";
  char16_t* const begin = text.data();
  char16_t* const end = begin + text.size();
  ctype_base::mask masks[5] = {};
  facet.is(begin, end, masks);
  std::string letters;
  for (const auto mask : masks) letters += (mask & ctype_base::alpha) != 0 ? 'x' : '-';
  EXPECT_EQ(letters, "x--x-");
  EXPECT_EQ(facet.scan_is(ctype_base::digit, begin, end), begin + 1);
  EXPECT_EQ(facet.scan_not(ctype_base::alnum, begin, end), begin + 2);
  EXPECT_EQ(facet.scan_is(ctype_base::alpha, begin + 4, end), end);
  std::string narrow(5, ' ');
  facet.narrow(begin, end, '?', narrow.data());
  EXPECT_EQ(narrow, "a1 Z?");
  facet.toupper(begin, end);
  EXPECT_EQ(text, u"A1 Z\u00e9");
  facet.tolower(begin, end);
  EXPECT_EQ(text, u"a1 z\u00e9");
}

TEST(Text, StreamsPrintPlainNumbers) {
  std::basic_ostringstream<char16_t> stream;
  stream.imbue(i18n::facet::get_global_std_locale());
  stream << u'(' << 1234567 << u"," << std::numeric_limits<std::uint64_t>::max() << u"," << -5L
         << u"," << short{7} << u"," << std::numeric_limits<long long>::min() << u")" << true
         << std::boolalpha << false << std::setw(4) << 42U << std::left << std::setw(3) << 1 << u"|"
         << " narrow" << std::endl;
  EXPECT_TRUE(stream.good());
  EXPECT_EQ(stream.str(),
            u"(1234567,18446744073709551615,-5,7,-9223372036854775808)1false  421  | narrow\n");
}

}  // namespace
}  // namespace fl
