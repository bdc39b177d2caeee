// The positions and texts of nodes.
#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"
#include "tests/analyzer/TreeText.h"

namespace ca {
namespace {

const char16_t classText[] =
    u"\xFEFF% \xD83D\xDE00 c\r\n"
    u"classdef A < p.B\n"
    u"    properties (Access = private)\n"
    u"        Gain (1, 1) double {mustBePositive} = 3; Empty {}, Last\n"
    u"    end\n"
    u"    methods\n"
    u"        function x = f(obj), x = obj.Gain'; end\n"
    u"    end\n"
    u"end";

// Line and column, both one-based.
std::pair<unsigned, unsigned> placeOf(const AnalysisResult& analysis, std::uint32_t position) {
  const std::uint64_t place = analysis.getLineAndColumn(position);
  return {static_cast<unsigned>(place), static_cast<unsigned>(place >> 32U)};
}

using Place = std::pair<unsigned, unsigned>;

TEST(Positions, LinesEndAtLineFeedsAndColumnsCountCodeUnits) {
  const auto analysis = analyzeText(classText);
  EXPECT_EQ(placeOf(*analysis, 0), Place(1, 1));
  EXPECT_EQ(placeOf(*analysis, 8), Place(1, 9));  // the line feed, after a surrogate pair
  EXPECT_EQ(placeOf(*analysis, 9), Place(2, 1));
  const auto end = static_cast<std::uint32_t>(analysis->sourceTextView().size());
  EXPECT_EQ(placeOf(*analysis, end), Place(9, 4));
  EXPECT_EQ(placeOf(*analysis, 0U - 1), Place(1, 0));
  const auto nothing = analyzeText(u"");
  EXPECT_EQ(placeOf(*nothing, nothing->getRootNode()->lastPosition), Place(1, 0));
}

TEST(Positions, TheWholeFileIsTheTextOfTheRoot) {
  const fl::ustring texts[] = {classText, u"", u"\n", u"x("};
  for (const fl::ustring& text : texts) {
    const auto analysis = analyzeText(text);
    EXPECT_EQ(analysis->getSubtreeText(*analysis->getRootNode()), text);
    EXPECT_EQ(analysis->getSourceText(true), text);
  }
}

}  // namespace
}  // namespace ca
