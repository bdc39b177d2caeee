#include "model/ClassDefinition.h"

#include <gtest/gtest.h>

#include "model/AnalyzerPositions.h"
#include "tests/model/ModelOfText.h"

namespace soca {
namespace {

using testing::columnsOf;
using testing::ModelOfText;
using testing::printed;

TEST(AnalyzerPositions, Conversions) {
  const auto analysis = ca::analyzeText(u"classdef C\n\n    properties\n    end\nend\n");
  const auto position = static_cast<std::uint32_t>(16);
  EXPECT_EQ(makePosition(*analysis, position, false), (SourcePosition{2, 4}));
  EXPECT_EQ(makePosition(*analysis, position, true), (SourcePosition{2, 5}));
  EXPECT_EQ(printed(makeExtentOfToken(*analysis, position, 10)), "From (2,4) to (2,14)");
  EXPECT_EQ(printed(makeExtentFromPair(*analysis, (std::uint64_t{33} << 32U) | position)),
            "From (2,4) to (3,7)");
  EXPECT_EQ(printed(makeExtentOfNode(*analysis, *analysis->getClassdef())), "From (0,0) to (4,3)");
}

TEST(ClassDefinition, SuperClasses) {
  const ModelOfText model(u"classdef Foo < a.b & c & ...\n  d.e.f\nend\n");
  const auto& superClasses = model.definition->getSuperClasses();
  ASSERT_EQ(superClasses.size(), 3U);
  EXPECT_EQ(superClasses[0], (SuperClassReference{u"a.b", {{0, 15}, {0, 18}}}));
  EXPECT_EQ(superClasses[1], (SuperClassReference{u"c", {{0, 21}, {0, 22}}}));
  EXPECT_EQ(superClasses[2], (SuperClassReference{u"d.e.f", {{1, 2}, {1, 7}}}));
}

TEST(ClassDefinition, MembersKeepTheOrderOfTheFile) {
  const ModelOfText model(
      u"classdef C\nproperties\nA\nend\nmethods\nfunction f(o)\nend\nend\nevents\nE\nend\n"
      u"properties\nB\nend\nenumeration\nX\nend\nmethods\nend\nend\n");
  const ClassDefinition& definition = *model.definition;
  const auto& members = definition.getMembers();
  ASSERT_EQ(members.size(), 6U);
  const auto& properties = definition.getPropertiesBlocks();
  const auto& methods = definition.getMethodsBlocks();
  ASSERT_EQ(properties.size(), 2U);
  ASSERT_EQ(methods.size(), 2U);
  const std::pair<const PropertiesBlock*, const MethodsBlock*> expected[] = {
      {&properties[0], nullptr}, {nullptr, &methods[0]}, {nullptr, nullptr},
      {&properties[1], nullptr}, {nullptr, nullptr},     {nullptr, &methods[1]},
  };
  for (std::size_t i = 0; i < members.size(); ++i) {
    EXPECT_EQ(members[i].propertiesBlock, expected[i].first) << i;
    EXPECT_EQ(members[i].methodsBlock, expected[i].second) << i;
    EXPECT_NE(members[i].node, nullptr);
  }
  EXPECT_EQ(&properties[1].getProperties()[0].getBlock(), &properties[1]);
  EXPECT_EQ(&methods[0].getMethods()[0].getBlock(), &methods[0]);
}

// The results are the same for a small class, which is searched linearly, and for a sorted one.
TEST(ClassDefinition, LookUpFindsTheFirst) {
  for (const int fillers : {0, 200}) {
    fl::ustring text = u"classdef C\nproperties\nB = 1\nA = 2\nB = 3\n";
    for (int i = 0; i < fillers; ++i)
      text += u"Filler" + fl::i18n::to_ustring(std::to_string(i)) + u"\n";
    text += u"end\nproperties\nA = 4\nend\nmethods\nfunction f(o)\nend\nfunction get.A(o)\nend\n";
    for (int i = 0; i < fillers; ++i)
      text += u"filler" + fl::i18n::to_ustring(std::to_string(i)) + u"(o)\n";
    const ModelOfText model(text + u"end\nmethods\nfunction f(o)\nend\nend\nend\n");
    const ClassDefinition& definition = *model.definition;
    EXPECT_EQ(definition.findProperty(u"A")->getFullExtent().start.line, 3U);
    EXPECT_EQ(definition.findProperty(u"B")->getFullExtent().start.line, 2U);
    EXPECT_EQ(definition.findProperty(u"a"), nullptr);
    EXPECT_EQ(definition.findMethod(u"f"), &definition.getMethodsBlocks()[0].getMethods()[0]);
    EXPECT_EQ(definition.findMethod(u"A"), nullptr);
    EXPECT_NE(definition.findMethod(u"get.A"), nullptr);
    const PropertiesBlock& block = definition.getPropertiesBlocks()[1];
    EXPECT_EQ(block.findProperty(u"A"), &block.getProperties()[0]);
    EXPECT_EQ(block.findProperty(u"B"), nullptr);
  }
}

}  // namespace
}  // namespace soca
