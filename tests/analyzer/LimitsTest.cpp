// The limits of nesting and of the length of a text.
#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/SourceAnalysis.h"
#include "platform/analyzer/tree/NodeVisitor.h"

namespace ca {
namespace {

fl::ustring repeat(fl::ustring_view text, std::size_t times) {
  fl::ustring result;
  result.reserve(text.size() * times);
  for (std::size_t time = 0; time < times; ++time) result += text;
  return result;
}

struct Nesting {
  const char* shows;
  const char16_t* opening;
  const char16_t* closing;
  // The number of levels of one pair.
  unsigned levels;
};

TEST(Limits, TheThousandthLevelIsTheLast) {
  constexpr Nesting nestings[] = {
      {"parentheses", u"(", u")", 1},      {"lists", u"[", u"]", 1},
      {"calls", u"f(", u")", 1},           {"prefix operators", u"-", u"", 1},
      {"powers", u"2^-(", u")", 2},        {"anonymous functions", u"@() ", u"", 1},
      {"dynamic fields", u"a.(", u")", 1},
  };
  for (const Nesting& nesting : nestings) {
    SCOPED_TRACE(nesting.shows);
    const auto textOf = [&](unsigned pairs) {
      return u"x = " + repeat(nesting.opening, pairs) + u"1" + repeat(nesting.closing, pairs);
    };
    const unsigned most = maximumNesting / nesting.levels;
    EXPECT_FALSE(analyzeText(textOf(most))->hasSyntaxError());
    EXPECT_THROW(analyzeText(textOf(most + 1)), InvalidAnalysisException);
  }
}

TEST(Limits, TextBeforeABodyIsOutsideOfIt) {
  const fl::ustring deep = repeat(u"(", maximumNesting) + u"1" + repeat(u")", maximumNesting);
  for (const char16_t* head :
       {u"if ", u"while ", u"switch ", u"for k = ", u"if a\nelseif ", u"classdef (A = "}) {
    const bool isClass = head[0] == u'c';
    const fl::ustring inner = isClass ? deep.substr(1, deep.size() - 2) : deep;
    EXPECT_NO_THROW(analyzeText(head + inner + (isClass ? u") C\nend" : u"\nend")));
  }
  EXPECT_NO_THROW(
      analyzeText(repeat(u"function f(x)\n", maximumNesting) + repeat(u"end\n", maximumNesting)));
}

TEST(Limits, BodiesAreLevels) {
  const auto textOf = [](unsigned ifs) {
    return u"classdef A\nmethods\nfunction f\n" + repeat(u"if x\n", ifs) + repeat(u"end\n", ifs) +
           u"end\nend\nend\n";
  };
  EXPECT_FALSE(analyzeText(textOf(maximumNesting - 3))->hasSyntaxError());
  EXPECT_THROW(analyzeText(textOf(maximumNesting - 2)), InvalidAnalysisException);
}

TEST(Limits, TextBeforeATooDeepPlaceIsRead) {
  const SourceAnalysis analysis(u"classdef A < p.B\nproperties\nx = 1\ny = " +
                                repeat(u"[", 100000));
  EXPECT_TRUE(analysis.isTooDeep());
  ASSERT_NE(analysis.getClassdef(), nullptr);
  EXPECT_EQ(analysis.getClassdef()->superClasses.front()->text.view(), u"p.B");
  EXPECT_EQ(analysis.getClassdef()->getPropertiesBlocks().front()->members.size(), 2U);
}

TEST(Limits, TheClassLineAfterTooDeepAttributesIsRead) {
  struct Attributes {
    const char* shows;
    fl::ustring text;
  };
  constexpr unsigned tooMany = maximumNesting + 1;
  const Attributes all[] = {
      {"parentheses", repeat(u"(", tooMany) + u"1" + repeat(u")", tooMany) + u")"},
      {"signs", repeat(u"-", tooMany) + u"1, B = ')')"},
      {"lists over many lines", repeat(u"{\n", 100000) + repeat(u"\n}", 100000) + u")"},
      {"parentheses that nothing closes", repeat(u"(", 100000)},
  };
  for (const Attributes& attributes : all) {
    SCOPED_TRACE(attributes.shows);
    const SourceAnalysis analysis(u"classdef (A = " + attributes.text +
                                  u" C < p.B & D\nproperties\nx = 1 < 2\nend\nend");
    EXPECT_TRUE(analysis.isTooDeep());
    ASSERT_NE(analysis.getClassdef(), nullptr);
    ASSERT_EQ(analysis.getClassdef()->superClasses.size(), 2U);
    EXPECT_EQ(analysis.getClassdef()->superClasses.front()->text.view(), u"p.B");
    ASSERT_NE(analysis.getClassdef()->name, nullptr);
    EXPECT_EQ(analysis.nodeTextView(*analysis.getClassdef()->name), u"C");
  }
}

// Chains are not nested: the parser, the walk and the destruction must not need a deep stack for
// them.
TEST(Limits, ChainsOfAnyLength) {
  constexpr std::size_t length = 200000;
  struct Chain {
    const char* shows;
    fl::ustring text;
    std::size_t identifiers;
  };
  const Chain chains[] = {
      {"sums", u"x = a" + repeat(u" + a", length), length + 2},
      {"mixed operators", u"x = " + repeat(u"a+b*c^d:e<f&g|h&&i||", length / 10) + u"a",
       length / 10 * 9 + 2},
      {"a row", u"x = [" + repeat(u"1 ", length) + u"]", 1},
      {"fields", u"x = a" + repeat(u".b", length), length + 2},
      {"calls", u"x = f" + repeat(u"(1)", length), 2},
      {"cells", u"x = f" + repeat(u"{1}", length), 2},
      {"transposes", u"x = y" + repeat(u"'", length), 2},
      {"elseif", u"if a\n" + repeat(u"elseif b\nc\n", length) + u"end", 2 * length + 1},
      {"case", u"switch a\n" + repeat(u"case b\nc\n", length) + u"end", 2 * length + 1},
      {"lines", repeat(u"x\n", 1000000), 1000000},
  };
  for (const Chain& chain : chains) {
    SCOPED_TRACE(chain.shows);
    const auto analysis = analyzeText(chain.text);
    EXPECT_FALSE(analysis->hasSyntaxError());
    std::size_t identifiers = 0;
    astapi::NodeVisitor<astapi::Identifier> visitor(
        [&](const astapi::Identifier&) { ++identifiers; });
    visitor(analysis->getRootNode());
    EXPECT_EQ(identifiers, chain.identifiers);
  }
}

}  // namespace
}  // namespace ca
