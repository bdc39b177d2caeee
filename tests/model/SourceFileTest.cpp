#include "model/SourceFile.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "model/DotIndex.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

// A file owns a text that is moved into it, and refers to any other.
static_assert(std::is_constructible_v<SourceFile, fl::ustring>);
static_assert(std::is_constructible_v<SourceFile, fl::ustring&>);
static_assert(std::is_constructible_v<SourceFile, const fl::ustring&>);
static_assert(std::is_constructible_v<SourceFile, fl::ustring_view>);
static_assert(std::is_constructible_v<SourceFile, const char16_t*>);
static_assert(!std::is_constructible_v<SourceFile, const fl::ustring>);

constexpr std::uint64_t allOnes = ~std::uint64_t{0};

struct Edit {
  Extent extent;
  const char16_t* text = u"";
  std::uint64_t options = 0;
};

struct EditCase {
  const char* shows;
  const char16_t* before;
  std::vector<Edit> edits;
  const char16_t* after;
};

const EditCase editCases[] = {
    {"no edit keeps the text", u"a\n\n b\r\n\tc\n", {}, u"a\n\n b\r\n\tc\n"},
    {"no line end after the last line", u"a\nb", {}, u"a\nb"},
    {"an empty text", u"", {}, u""},
    {"only line ends", u"\n\n\n", {}, u"\n\n\n"},
    {"a blank last line is removed", u"a\n \t ", {}, u"a\n"},
    {"a last line with a continuation is removed", u"a\n  ... x", {}, u"a\n"},
    {"a text of one blank line", u"  ", {}, u""},
    {"an edit inside a line", u"abc\ndef", {{{{0, 1}, {0, 2}}, u"XY"}}, u"aXYc\ndef"},
    {"an insertion", u"abc", {{{{0, 3}, {0, 3}}, u"!"}}, u"abc!"},
    {"higher columns first",
     u"abc",
     {{{{0, 2}, {0, 3}}, u"33"}, {{{0, 0}, {0, 1}}, u"11"}},
     u"11b33"},
    {"an end after the line is the line's end", u"abc\nd", {{{{0, 1}, {0, 9}}, u"X"}}, u"aX\nd"},
    {"an edited line that is blank is removed", u"a\n  b\nc\n", {{{{1, 2}, {1, 3}}}}, u"a\nc\n"},
    {"an edited line with blanks and a CR is removed",
     u"a\nb\t\v\f \r\nc\n",
     {{{{1, 0}, {1, 1}}}},
     u"a\nc\n"},
    {"an untouched blank line stays", u"a\n\nb\nc\n", {{{{2, 0}, {2, 1}}}}, u"a\n\nc\n"},
    {"an edited line with a bare continuation is removed with its comment",
     u"a\nb ... why\nc\n",
     {{{{1, 0}, {1, 1}}}},
     u"a\nc\n"},
    {"an edited line with a single point stays", u"a .5\nb\n", {{{{0, 0}, {0, 1}}}}, u" .5\nb\n"},
    {"text with a line end stays in its line",
     u"a\nb\n",
     {{{{0, 1}, {0, 1}}, u";\n  x"}},
     u"a;\n  x\nb\n"},
    {"two lines become one", u"abc\ndef\ng\n", {{{{0, 1}, {1, 1}}, u"X"}}, u"aXef\ng\n"},
    {"the rest of the third line stays a line",
     u"abc\n?\ndef\ng\n",
     {{{{0, 1}, {2, 1}}, u"X"}},
     u"aX\nef\ng\n"},
    {"a blank rest is removed", u"abc\nde  \ng\n", {{{{0, 1}, {1, 2}}, u"X"}}, u"aX\ng\n"},
    {"a rest with a continuation is removed",
     u"abc\nde ...\ng\n",
     {{{{0, 1}, {1, 2}}, u"X"}},
     u"aX\ng\n"},
    {"a whole line", u"a\nb\nc\n", {{{{1, 0}, {2, 0}}}}, u"a\nc\n"},
    {"a whole line before a blank one is removed with it",
     u"a\nb\n  \nc\n",
     {{{{1, 0}, {2, 0}}}},
     u"a\nc\n"},
    {"an end before the first column empties the line",
     u"abc\ndef\ng\n",
     {{{{0, 1}, {1, allOnes}}, u"X"}},
     u"aX\ng\n"},
    {"an end after the last line's end removes all of it",
     u"abc\nde\ng\n",
     {{{{0, 1}, {1, 9}}}},
     u"a\ng\n"},
    {"a declaration is removed with its terminator and its line",
     u"classdef C < velum.System\n  properties\n    A = 1;\n    B = 2;\n  end\nend\n",
     {{{{2, 4}, {2, 9}}, u"", 1}},
     u"classdef C < velum.System\n  properties\n    B = 2;\n  end\nend\n"},
    {"a delimiter is removed too", u"x = 1;\ny\n", {{{{0, 0}, {0, 5}}, u"", 1}}, u"y\n"},
    {"one delimiter only", u"x = 1 ,; y\n", {{{{0, 0}, {0, 5}}, u"", 1}}, u"; y\n"},
    {"blanks after it are removed to the line's end",
     u"x = 1 \t \ny\n",
     {{{{0, 4}, {0, 5}}, u"2", 1}},
     u"x = 2\ny\n"},
    {"a comment stops the search", u"x = 1 % why\n", {{{{0, 0}, {0, 5}}, u"", 1}}, u"% why\n"},
    {"a delimiter after a continuation",
     u"x = 1 ... why\n  ; y\nz\n",
     {{{{0, 0}, {0, 5}}, u"", 1}},
     u" y\nz\n"},
    {"a search stays on its line without a continuation",
     u"x = 1\n;\n",
     {{{{0, 0}, {0, 5}}, u"", 1}},
     u";\n"},
    {"a continuation over deleted lines",
     u"x ...\na\nb\n; y\n",
     {{{{0, 5}, {3, 0}}}, {{{0, 0}, {0, 1}}, u"z", 1}},
     u"z\n y\n"},
    {"an ampersand is removed too", u"< a & b\n", {{{{0, 2}, {0, 3}}, u"", 2}}, u"<  b\n"},
    {"a list delimiter, then an ampersand", u"a; & b\n", {{{{0, 0}, {0, 1}}, u"", 3}}, u" b\n"},
    {"a continuation at the end of the text", u"a ...", {{{{0, 0}, {0, 1}}, u"b", 1}}, u"b"},
    {"blank lines around a deleted line become one",
     u"a\n\nb\nc\n\nd\n",
     {{{{2, 0}, {3, 1}}}, {{{1, 0}, {3, 0}}}, {{{2, 0}, {2, 0}}, u"x"}},
     u"a\n\nd\n"},
};

TEST(SourceFile, Edits) {
  for (const EditCase& testCase : editCases) {
    SCOPED_TRACE(testCase.shows);
    SourceFile file(testCase.before);
    for (const Edit& edit : testCase.edits) {
      EXPECT_FALSE(file.findMissingDelimiter(edit.options, edit.extent));
      file.replace(edit.text, edit.options, edit.extent);
    }
    file.removeEmptiedLines();
    EXPECT_EQ(fl::i18n::to_string(file.getText()), fl::i18n::to_string(testCase.after));
  }
}

// A line as its flags and text.
std::vector<std::string> linesOf(const SourceFile& file) {
  std::vector<std::string> lines;
  for (const auto& line : file.getLines()) {
    lines.push_back(std::to_string(line.flags) + fl::i18n::to_string(line.text));
  }
  return lines;
}

TEST(SourceFile, Flags) {
  SourceFile file(u"abc\nde\nfg\nhi\n");
  EXPECT_EQ(linesOf(file), (std::vector<std::string>{"0abc", "0de", "0fg", "0hi", "6"}));
  file.replace(u"X", 0, {{0, 1}, {2, 1}});
  EXPECT_EQ(linesOf(file), (std::vector<std::string>{"6aX", "1", "4g", "0hi", "6"}));
  file.removeEmptiedLines();
  EXPECT_EQ(linesOf(file), (std::vector<std::string>{"4aX", "1", "4g", "0hi", "1"}));
  EXPECT_EQ(file.getNumberOfLines(), 5U);
}

// A deleted line accepts text, but stays deleted; blank lines around it may then become adjacent.
TEST(SourceFile, EditOfADeletedLine) {
  const auto edited = [](const char16_t* text, Extent extent, std::uint64_t firstColumn = 0) {
    SourceFile file(text);
    file.replace(u"", 0, {{1, firstColumn}, {3, 0}});  // deletes line 2
    file.replace(u"x", 0, extent);
    return linesOf(file);
  };
  using Lines = std::vector<std::string>;
  EXPECT_EQ(edited(u"a\n\nb\n\nc", {{2, 0}, {2, 0}}), (Lines{"0a", "6", "5x", "1", "6c"}));
  EXPECT_EQ(edited(u"a\n\nb\nd\nc", {{2, 0}, {2, 0}}), (Lines{"0a", "6", "5x", "4d", "6c"}));
  EXPECT_EQ(edited(u"a\n\nb\nd", {{2, 0}, {3, 0}}), (Lines{"0a", "6", "7x", "6d"}));
  EXPECT_EQ(edited(u"a\nq\nb\n\nc", {{2, 0}, {2, 0}}, 1), (Lines{"0a", "6q", "5x", "4", "6c"}));
  SourceFile file(u"q\n\nb\n\nd");
  file.replace(u"", 0, {{0, 0}, {3, 0}});
  file.replace(u"x", 0, {{2, 0}, {2, 0}});  // the line before is deleted
  file.replace(u"y", 0, {{1, 0}, {1, 0}});  // the line after is deleted
  EXPECT_EQ(linesOf(file), (Lines{"6", "5y", "5x", "4", "6d"}));
}

TEST(SourceFile, MovePastDelimiter) {
  const SourceFile file(u"a  ;b\nc ...\n  , d\ne % f\ng  \n.x\n&");
  const fl::ustring list = u";,";
  EXPECT_EQ(file.movePastDelimiter({0, 1}, list), (SourcePosition{0, 4}));
  EXPECT_EQ(file.movePastDelimiter({1, 1}, list), (SourcePosition{2, 3}));
  EXPECT_EQ(file.movePastDelimiter({3, 1}, list), (SourcePosition{3, 2}));
  EXPECT_EQ(file.movePastDelimiter({4, 1}, list), (SourcePosition{4, 3}));
  EXPECT_EQ(file.movePastDelimiter({4, 99}, list), (SourcePosition{4, 3}));
  EXPECT_EQ(file.movePastDelimiter({5, 0}, u"&"), (SourcePosition{6, 1}));
}

TEST(SourceFile, MissingDelimiter) {
  const SourceFile file(u"a b; & c\nd ...\n  e");
  EXPECT_EQ(file.findMissingDelimiter(1, {{0, 0}, {0, 1}}), (SourcePosition{0, 2}));
  EXPECT_EQ(file.findMissingDelimiter(0, {{0, 0}, {0, 1}}), std::nullopt);
  EXPECT_EQ(file.findMissingDelimiter(2, {{0, 2}, {0, 3}}), (SourcePosition{0, 3}));
  EXPECT_EQ(file.findMissingDelimiter(3, {{0, 2}, {0, 3}}), std::nullopt);
  EXPECT_EQ(file.findMissingDelimiter(3, {{0, 0}, {0, 1}}), (SourcePosition{0, 2}));
  EXPECT_EQ(file.findMissingDelimiter(1, {{1, 0}, {1, 1}}), (SourcePosition{2, 2}));
}

TEST(SourceFileDeathTest, MissingDelimiterEndsTheProcess) {
  SourceFile file(u"a b");
  EXPECT_DEATH(file.replace(u"", SourceFile::ConsumeListDelimiter, {{0, 0}, {0, 1}}),
               "SourceFile:205.*movePastDelimiter.*Could not find delimiter");
}

TEST(SourceFile, StartAfterTheLineThrows) {
  SourceFile file(u"abc\nd");
  EXPECT_THROW(file.replace(u"", 0, {{0, 4}, {0, 4}}), std::out_of_range);
  EXPECT_THROW(file.replace(u"", 0, {{1, 2}, {1, 1}}), std::out_of_range);
  EXPECT_NO_THROW(file.replace(u"", 0, {{0, 3}, {0, 3}}));
}

TEST(TextSearch, FindsLineEndsAmongUnitsWithThatByte) {
  const fl::ustring text = u"\u0A0A\u0A00\u010A\n\u0A0A\n";
  EXPECT_EQ(fl::findLineEnd(text, 0), 3U);
  EXPECT_EQ(fl::findLineEnd(text, 3), 3U);
  EXPECT_EQ(fl::findLineEnd(text, 4), 5U);
  EXPECT_EQ(fl::findLineEnd(text, 6), fl::ustring_view::npos);
  EXPECT_TRUE(fl::areEqualTexts({}, u""));
  EXPECT_FALSE(fl::areEqualTexts(u"ab", u"a\u0162"));
}

TEST(TextSearch, FindsTheFirstOccurrenceOnly) {
  EXPECT_EQ(fl::TextFinder(u"aXa").find(u"aaXaXa", 2), 3U);
  EXPECT_EQ(fl::TextFinder(u"aXa").find(u"aaXaXa", 4), fl::ustring_view::npos);
  EXPECT_EQ(fl::TextFinder(u"").find(u"ab", 2), 2U);
  EXPECT_EQ(fl::findBehindDot(u"a.Mode2 + b.Mode", u"Mode"), 6U);
  EXPECT_EQ(fl::findBehindDot(u"Mode.Mod ..Mode", u"Mode"), 15U);
  EXPECT_EQ(fl::findBehindDot(u"Mode", u"Mode"), fl::ustring_view::npos);
  EXPECT_EQ(fl::findBehindDot(u"", u"Mode"), fl::ustring_view::npos);
  // Units with the same low byte must not make it skip an occurrence.
  EXPECT_EQ(fl::findBehindDot(u"\u014D\u014F.\u014Dode", u"\u014Dode"), 7U);
  const fl::ustring name(255, u'x');
  const fl::ustring text = fl::ustring(300, u'y') + u'.' + fl::ustring(254, u'x') + u'.' + name;
  EXPECT_EQ(fl::findBehindDot(text + u"x", name), 811U);
}

TEST(DotIndex, HasTheResultsOfASearch) {
  const fl::ustring text = u".A x.Ab2 ...Ab .B.AbcSet\n.Abc .ASet.\u00C9t9";
  const std::vector<fl::ustring_view> names = {u"Ab",      u"ASet", u"A",  u"AbcSet", u"Abc",
                                               u"\u00C9t", u"B",    u"Ab", u"No",     u"AbcSetX"};
  const DotIndex index(text, names);
  for (const fl::ustring_view name : names) {
    EXPECT_EQ(index.findBehind(name), fl::findBehindDot(text, name)) << fl::i18n::to_string(name);
  }
}

}  // namespace
}  // namespace soca
