// The positions and texts of nodes.
#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/tree/NodeVisitor.h"
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

TEST(Positions, PartsOfABlock) {
  const auto analysis = analyzeText(classText);
  const auto* block = analysis->getClassdef()->getPropertiesBlocks().front();
  EXPECT_EQ(placeOf(*analysis, block->position), Place(3, 5));
  EXPECT_EQ(placeOf(*analysis, block->openingParenthesis), Place(3, 16));
  EXPECT_EQ(placeOf(*analysis, block->closingParenthesis), Place(3, 33));
  EXPECT_EQ(placeOf(*analysis, block->closing.getClosingPosition()), Place(5, 7));
  EXPECT_EQ(placeOf(*analysis, block->lastPosition), Place(5, 7));
}

TEST(Positions, ADeclarationEndsWithItsLastPart) {
  const auto analysis = analyzeText(classText);
  const auto* block = analysis->getClassdef()->getPropertiesBlocks().front();
  const auto textOf = [&](const astapi::Node& node) { return analysis->getNodeText(node, false); };
  EXPECT_EQ(textOf(*block->members[0]), u"Gain (1, 1) double {mustBePositive} = 3");
  EXPECT_EQ(textOf(*block->members[1]), u"Empty {}");
  EXPECT_EQ(textOf(*block->members[2]), u"Last");
  const auto& gain = static_cast<const astapi::PropertyNode&>(*block->members[0]);
  EXPECT_EQ(textOf(*gain.validation), u"(1, 1) double {mustBePositive}");
  EXPECT_EQ(placeOf(*analysis, gain.validation->sizeParentheses->closing), Place(4, 19));
  EXPECT_EQ(placeOf(*analysis, gain.validation->validatorBraces->opening), Place(4, 28));
  const auto& empty = static_cast<const astapi::PropertyNode&>(*block->members[1]);
  EXPECT_TRUE(empty.validation->validatorBraces.has_value());
  EXPECT_FALSE(empty.validation->sizeParentheses.has_value());
  EXPECT_EQ(static_cast<const astapi::PropertyNode&>(*block->members[2]).validation, nullptr);
}

TEST(Positions, AFunctionExtendsFromItsKeywordThroughItsEnd) {
  const auto analysis = analyzeText(classText);
  const auto* method = analysis->getClassdef()->getMethods().front();
  EXPECT_EQ(analysis->getNodeText(*method, true), u"function x = f(obj), x = obj.Gain'; end");
}

TEST(Positions, IdsOfOneNameAreEqual) {
  const auto analysis = analyzeText(u"abc = abd; x = abc");
  std::vector<astapi::StringId> ids;
  astapi::NodeVisitor<astapi::Identifier> visitor(
      [&](const astapi::Identifier& name) { ids.push_back(name.id); });
  visitor(analysis->getRootNode());
  ASSERT_EQ(ids.size(), 4U);
  EXPECT_EQ(ids[0], ids[3]);
  EXPECT_FALSE(ids[0] == ids[1]);
  EXPECT_EQ(ids[0], astapi::StringId(u"abc"));
  EXPECT_EQ(astapi::StringId(fl::ustring(u"abd")), ids[1]);
  EXPECT_EQ(ids[0].getString(), u"abc");
  EXPECT_EQ(astapi::StringId(), astapi::StringId(u""));
}

}  // namespace
}  // namespace ca
