// The order of classes and families, and the collection and printing of their results.
#include <map>

#include "platform/failure/Exception.h"

#include <gtest/gtest.h>
#include "diagnostics/Findings.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/ActionCollection.h"
#include "service/ActionReport.h"
#include "service/ClassWalk.h"
#include "tests/model/ModelOfText.h"
#include "tests/service/SyntheticActions.h"

namespace soca {
namespace {

using testing::edit;
using testing::FakeMetaClass;
using testing::group;
using testing::listOf;

TEST(ClassWalk, BreadthFirstEachOnce) {
  const std::map<fl::ustring, std::vector<fl::ustring>> superClasses = {
      {u"C", {u"B", u"A", u"C", u"b"}}, {u"A", {u"Base", u"C"}}, {u"B", {u"Base", u"A"}}};
  std::string order;
  for (ClassWalk walk(u"C"); !walk.isDone();) {
    const fl::ustring name = walk.next();
    order += fl::i18n::to_string(name) + ' ';
    if (superClasses.contains(name)) walk.add(superClasses.at(name));
  }
  EXPECT_EQ(order, "C B A b Base ");
}

TEST(RuleFamilies, RunInOneOrderForAnyMask) {
  using Families = std::vector<RuleFamilyType>;
  using enum RuleFamilyType;
  EXPECT_EQ(selectRuleFamilies(1 + 2 + 4), (Families{attributes, mixins, impl}));
  EXPECT_EQ(selectRuleFamilies(allFamilies).size(), ruleFamilies.size());
  EXPECT_EQ(selectRuleFamilies(5), (Families{mixins, impl}));
  EXPECT_EQ(selectRuleFamilies(2), (Families{attributes}));
  EXPECT_EQ(selectRuleFamilies(~allFamilies), (Families{}));
  EXPECT_EQ(ServiceContext(3).factories.size(), 2U);
}

// Finds two conversions, of which the second has an action on line `line` and a finding.
class FakeFactory : public AbstractActionFactory {
 public:
  explicit FakeFactory(std::uint64_t line) : line_(line) {}

  RuleResult createActions(const AnalyzedClass& analyzedClass,
                           const ConversionChoice& choice) const override {
    RuleResult result;
    result.addConversion({});
    const std::size_t conversion = result.addConversion({});
    result.findings.push_back({.message = {}, .kind = ConversionKindType::mixins});
    if (!choice.isMade(conversion)) return result;
    result.addAction(edit({{{line_, 0}, {line_, 1}}, analyzedClass.className}), conversion);
    result.findings.push_back({.message = makeMessage("Id", {analyzedClass.className}),
                               .kind = ConversionKindType::mixins,
                               .conversion = conversion});
    return result;
  }

 private:
  std::uint64_t line_;
};

std::unique_ptr<AnalyzedClass> makeClass(const fl::ustring& name, const fl::ustring& file) {
  auto result = std::make_unique<AnalyzedClass>();
  auto metaClass = std::make_unique<FakeMetaClass>();
  metaClass->file = file;
  result->className = name;
  result->metaClass = std::move(metaClass);
  return result;
}

TEST(CollectActions, OneFamilyAfterTheOther) {
  ClassList classes;
  classes.push_back(makeClass(u"a.B", u"/a/B.vlm"));
  classes.push_back(makeClass(u"C", u"/C.vlm"));
  FactoryList factories;
  factories.push_back(std::make_unique<FakeFactory>(8));
  factories.push_back(std::make_unique<FakeFactory>(5));
  auto entries = collectActions(classes, factories);
  ASSERT_EQ(entries.size(), 2U);
  const ClassActions& first = entries.front();
  EXPECT_EQ(first.conversions.size(), 4U);
  EXPECT_EQ(first.owners, (std::vector<ActionOwner>{{0, 1}, {1, 3}}));
  ASSERT_EQ(first.findings.size(), 4U);
  EXPECT_EQ(first.findings[2].conversion, noConversion);
  EXPECT_EQ(first.findings[3].conversion, 3U);
  EXPECT_EQ(findingText(first.findings[3].message), findingText("Id", {u"a.B"}));
  EXPECT_EQ(entries.back().actions.front()->getExtent().start.line, 8U);
  EXPECT_EQ(entries.back().actions.back()->getExtent().start.line, 5U);
  // The classes were moved into the entries.
  ASSERT_EQ(classes.size(), 2U);
  EXPECT_EQ(classes.front(), nullptr);
  EXPECT_EQ(fl::i18n::to_string(formatActionReport(std::move(entries))),
            "CLASS: a.B\n\nFile: /a/B.vlm\n"
            "\nRange: From (8,0) to (8,1)\nReplacement: \"a.B\"\n"
            "\nRange: From (5,0) to (5,1)\nReplacement: \"a.B\"\n\n\n"
            "CLASS: C\n\nFile: /C.vlm\n"
            "\nRange: From (8,0) to (8,1)\nReplacement: \"C\"\n"
            "\nRange: From (5,0) to (5,1)\nReplacement: \"C\"\n\n\n");
}

TEST(CollectActions, AChoiceCountsOverAllFamilies) {
  FactoryList factories;
  factories.push_back(std::make_unique<FakeFactory>(8));
  factories.push_back(std::make_unique<FakeFactory>(5));
  const std::vector<bool> made = {false, false, false, true};
  const ClassActions entry =
      collectClassActions(makeClass(u"C", u"/C.vlm"), factories, ConversionChoice(&made));
  ASSERT_EQ(entry.actions.size(), 1U);
  EXPECT_EQ(entry.actions.front()->getExtent().start.line, 5U);
  EXPECT_EQ(entry.owners, (std::vector<ActionOwner>{{0, 3}}));
}

TEST(CollectActions, NoFamilyStillGivesAnEntry) {
  ClassList classes;
  classes.push_back(makeClass(u"C", u"/C.vlm"));
  const auto entries = collectActions(classes, FactoryList());
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_TRUE(entries.front().actions.empty());
  EXPECT_TRUE(entries.front().findings.empty());
}

TEST(ActionReport, Groups) {
  std::list<ClassActions> entries(1);
  entries.front().analyzedClass = makeClass(u"foo.Bar", u"/r/foo/Bar.vlm");
  entries.front().actions =
      listOf(edit({{{4, 8}, {4, 15}}, u"x = 1"}),
             group(edit({{{6, 20}, {6, 30}}}), group(edit({{{7, 0}, {7, 1}}})),
                   edit({{{6, 4}, {6, 9}}, u"say \"y\"\nz", 1})),
             group(group(edit({{{9, 0}, {9, 1}}}))));
  EXPECT_EQ(fl::i18n::to_string(formatActionReport(std::move(entries))),
            "CLASS: foo.Bar\n\nFile: /r/foo/Bar.vlm\n"
            "\nRange: From (4,8) to (4,15)\nReplacement: \"x = 1\"\n"
            "\nGROUP\nRange: From (6,4) to (7,1)\n"
            "\n  Range: From (6,20) to (6,30)\n  Replacement: \"\"\n"
            "\n  Range: From (6,4) to (6,9)\n  Replacement: \"say \"y\"\nz\"\n"
            "\nGROUP\nRange: From (9,0) to (9,1)\n\n\n");
  EXPECT_EQ(formatActionReport({}), u"");
}

}  // namespace
}  // namespace soca
