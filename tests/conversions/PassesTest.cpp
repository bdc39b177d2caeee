// Which conversions of a class are made, in which pass, and where their places are.
#include "conversions/passes/ClassPasses.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "platform/analyzer/Analyzer.h"
#include "platform/text/Conversions.h"
#include "tests/conversions/ConvertedClass.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using testing::ConvertedClass;

ChoiceLimits limitsOf(RiskType highest, std::initializer_list<ConversionKindType> kinds = {}) {
  ChoiceLimits limits{highest, {}};
  if (kinds.size() > 0) limits.rules = RuleChoice::none();
  for (const ConversionKindType kind : kinds) limits.rules.add(kind);
  return limits;
}

ChoiceLimits withoutLayout() {
  ChoiceLimits limits;
  limits.mayLayApart = false;
  return limits;
}

std::string classWith(const std::string& body) {
  return "classdef (StrictDefaults) C < velum.System\n" + body + "end\n";
}

std::string block(const std::string& opening, const std::string& declarations) {
  return opening + "\n" + declarations + "\nend\n";
}

std::string method(const std::string& name, const std::string& result = "false") {
  return "function f = " + name + "(o, i)\nf = " + result + ";\nend\n";
}

std::string setOf(const std::string& property, const std::string& values = "'a', 'b'") {
  return property + "Set = velum.system.StringSet({" + values + "});";
}

constexpr const char* logical = "properties (Logical)";
constexpr const char* positiveInteger = "properties (PositiveInteger)";

TEST(Passes, MakeWhatCanBeMade) {
  const std::string methods = "methods (Access = protected)";
  const std::string twoSets = "A = 'a';\nB = 'a';\n";
  const std::string risky = block(logical, "A = true;") + block(logical, "B = 3;") +
                            block(methods, method("isInputSizeLockedImpl", "g(i)"));
  const struct {
    const char* shows;
    std::string body;
    const char* conversions;
    ChoiceLimits limits = {};
  } rows[] = {
      // --- one that cannot be made ---
      {"a validator list without validators",
       block(logical, "A = true;") + block(positiveInteger, "B {} = 1;") + block("events", "x") +
           block(logical, "D = true;"),
       "attributes/logical:A 1\nattributes/logical:D 1\n"
       "attributes/positive-integer:B ResultHasSyntaxError\n"},
      {"a set without values",
       block("properties", "A = 'a';\n" + setOf("A", "") + "\nB = 'a';\n" + setOf("B")),
       "attributes/string-set:B 1\nattributes/string-set:A ResultHasSyntaxError\n"},
      {"edits that meet each other, and those that are joined with them",
       block(logical, "A = true;") + "properties (Logical), B = true; end\n" +
           block(logical, "D = true;"),
       "attributes/logical:A 1\nattributes/logical:D 1\nattributes/logical:B EditsMeet\n",
       withoutLayout()},
      // --- two that depend on each other ---
      {"two that only fail together, where the end of a block is deleted",
       block(logical, "A = true;") + block("properties (Logical) %{", "B = true;"),
       "attributes/logical:A 1\nattributes/logical:B ResultHasSyntaxError\n"},
      {"two that only succeed together, beside one that fails",
       block("properties",
             twoSets + setOf("A") + " %{\n" + setOf("B") + " %}\nD {} = 'a';\n" + setOf("D")),
       "attributes/string-set:A 1\nattributes/string-set:B 1\n"
       "attributes/string-set:D ResultHasSyntaxError\n"},
      {"two on one line", block("properties", twoSets + setOf("A") + " " + setOf("B")),
       "attributes/string-set:A 1\nattributes/string-set:B 2\n"},
      {"two attributes of one block", block("properties (Logical, PositiveInteger)", "A = 1;"),
       "attributes/positive-integer:A 1\nattributes/logical:A 2\n"},
      {"one on the line of another that fails",
       block("properties", twoSets + setOf("A", "") + " " + setOf("B")),
       "attributes/string-set:B 1\nattributes/string-set:A ResultHasSyntaxError\n"},
      {"one on the line of another whose edits meet",
       block("properties", "A = 'a'; " + setOf("A") + " " + setOf("B") + "\nB = 'a';"),
       "attributes/string-set:B 1\nattributes/string-set:A EditsMeet\n", withoutLayout()},
      // --- lines that are laid apart ---
      {"edits that meet each other, and those that are joined with them",
       block(logical, "A = true;") + "properties (Logical), B = true; end\n" +
           block(logical, "D = true;"),
       "attributes/logical:A 1\nattributes/logical:D 1\nattributes/logical:B 2\n"},
      {"one on the line of another whose edits meet",
       block("properties", "A = 'a'; " + setOf("A") + " " + setOf("B") + "\nB = 'a';"),
       "attributes/string-set:B 1\nattributes/string-set:A 2\n"},
      {"two crowded lines, and one that cannot be made on a line of its own either",
       block("properties", "A = 'a'; " + setOf("A") + "\nB = 'a'; " + setOf("B", "") +
                               "\nD = 'a'; " + setOf("D")),
       "attributes/string-set:A 1\nattributes/string-set:D 1\n"
       "attributes/string-set:B EditsMeet\n"},
      {"crowded lines of which one cannot be made, and another is on its line",
       block("properties", "A = 'a'; " + setOf("A", "") + " B = 'a'; " + setOf("B")),
       "attributes/string-set:B 1\nattributes/string-set:A ResultHasSyntaxError\n"},
      {"a method that is laid apart, negated and deleted",
       block(methods, "function f = isInputSizeLockedImpl(~, ~), f = true; end"),
       "impl/rename-negate:isInputSizeLockedImpl 1\n"
       "impl/delete-redundant:isInputSizeLockedImpl 2\n"},
      {"blocks that are joined, on one line",
       "properties (Logical), A = true; end, properties (Logical), B = false; end\n",
       "attributes/logical:A 1\nattributes/logical:B 1\n"},
      {"a line on which only blocks are joined",
       "properties (Logical), A = true;\nend, properties, B = 1; F = 1; end, properties (Logical)\n"
       "D = true; E = true;\nend\n",
       "attributes/logical:A 1\nattributes/logical:D 1\n"},
      {"lines that may not be laid apart, beside other risks",
       block(methods, "function f = isInputSizeLockedImpl(~, i), f = g(i); end") +
           "properties (Logical), A = true; end\nproperties (Logical), B = 3; end\n" +
           block("properties", "D = 'a'; " + setOf("D", "")),
       "attributes/logical:A LaidApart\nattributes/logical:B DefaultOutsideValidators\n"
       "attributes/string-set:D EditsMeet\n"
       "impl/rename-negate:isInputSizeLockedImpl CallNegated\n",
       limitsOf(RiskType::safe)},
      {"sets with one companion, all of which can be made",
       block("properties", "A = 'a';\n" + setOf("A") + "\nA = 'b';"),
       "attributes/string-set:A~1 1\nattributes/string-set:A~2 1\n"},
      {"sets with one companion, of which one fails",
       block("properties", "A = 'a';\n" + setOf("A") + "\nA {} = 'b';\n"),
       "attributes/string-set:A~1 ResultHasSyntaxError\n"
       "attributes/string-set:A~2 ResultHasSyntaxError\n"},
      {"sets with one companion, of which one is unsafe",
       block("properties", "A = 'a';\n" + setOf("A") + "\nA = 'd';\n"),
       "attributes/string-set:A~1 DefaultOutsideValidators\n"
       "attributes/string-set:A~2 DefaultOutsideValidators\n"},
      // --- what may be made ---
      {"no risk", risky,
       "attributes/logical:A 1\nattributes/logical:B DefaultOutsideValidators\n"
       "impl/rename-negate:isInputSizeLockedImpl CallNegated\n",
       limitsOf(RiskType::safe)},
      {"what a person looks at", risky,
       "attributes/logical:A 1\nimpl/rename-negate:isInputSizeLockedImpl 1\n"
       "attributes/logical:B DefaultOutsideValidators\n"},
      {"all risks", risky,
       "attributes/logical:A 1\nattributes/logical:B 1\n"
       "impl/rename-negate:isInputSizeLockedImpl 1\n",
       limitsOf(RiskType::unsafe)},
      {"kinds that are not selected",
       risky + block("properties", "D = 'a';\n" + setOf("D")) +
           block(methods, method("isOutputSizeLockedImpl")),
       "impl/delete-obsolete:isOutputSizeLockedImpl 1\nattributes/logical:A NotSelected\n"
       "attributes/logical:B NotSelected\nattributes/string-set:D NotSelected\n"
       "impl/rename-negate:isInputSizeLockedImpl NotSelected\n",
       limitsOf(RiskType::unsafe,
                {ConversionKindType::emptyBlock, ConversionKindType::deleteObsolete})},
      // --- what an earlier pass makes possible ---
      {"a method that is redundant once it is negated",
       block(methods, method("isInputSizeLockedImpl", "true")),
       "impl/rename-negate:isInputSizeLockedImpl 1\n"
       "impl/delete-redundant:isInputSizeLockedImpl 2\n"},
      {"a set to which only a deleted method refers",
       block(methods, method("isOutputSizeLockedImpl", "o.ASet")) +
           block("properties", "A = 'a';\n" + setOf("A")),
       "impl/delete-obsolete:isOutputSizeLockedImpl 1\nattributes/string-set:A 2\n"},
      {"a method that stays where its new counterpart is deleted",
       block(methods, method("isInputSizeMutableImpl") + method("isInputSizeLockedImpl")),
       "impl/delete-redundant:isInputSizeMutableImpl OldMethodStays\n"},
      {"a method that takes the name of a deleted one",
       block(methods, method("isInputSizeMutableImpl") + method("isInputSizeLockedImpl")),
       "impl/delete-redundant:isInputSizeMutableImpl 1\n"
       "impl/rename-negate:isInputSizeLockedImpl 2\n",
       limitsOf(RiskType::unsafe)},
  };
  for (const auto& row : rows) {
    const ConvertedClass converted(classWith(row.body), row.limits);
    EXPECT_EQ(converted.conversions(), row.conversions) << row.shows;
    EXPECT_EQ(converted.leftOutTooMuch(), "") << row.shows;
  }
}

ConversionSelection selectionOf(const std::vector<ChosenConversion>& chosen) {
  ConversionSelection selection{{}, {}, ChosenIds()};
  selection.ids->add("C", "", chosen);
  selection.ids->finish();
  return selection;
}

// The ids are those of the text as it was read, in all passes.
TEST(Passes, MakeWhatIsSelected) {
  const std::string emptyBlocks =
      block("properties (Hidden)", "") + block("properties", "") + block("properties", "");
  const std::string strict =
      block("methods (Access = protected)", method("isInputSizeLockedImpl", "true"));
  const std::string sharedSet = block("properties", "A = 'a';\n" + setOf("A") + "\nA = 'b';");
  const struct {
    const char* shows;
    std::string body;
    ConversionSelection selection;
    const char* conversions;
  } rows[] = {
      {"a number that others have once it is made",
       emptyBlocks,
       {{"*:2"}, {}, {}},
       "attributes/empty-block:2 1\nattributes/empty-block:1 NotSelected\n"
       "attributes/empty-block:3 NotSelected\n"},
      {"two passes over one method",
       strict,
       {{"*:isInputSizeLockedImpl"}, {}, {}},
       "impl/rename-negate:isInputSizeLockedImpl 1\n"
       "impl/delete-redundant:isInputSizeLockedImpl 2\n"},
      {"the first of them",
       strict,
       {{}, {"*redundant*"}, {}},
       "impl/rename-negate:isInputSizeLockedImpl 1\n"
       "impl/delete-redundant:isInputSizeLockedImpl NotSelected\n"},
      {"the second of them",
       strict,
       {{"*redundant*"}, {}, {}},
       "impl/rename-negate:isInputSizeLockedImpl NotSelected\n"},
      {"one of two that need each other",
       sharedSet,
       {{}, {"C#*:A~2"}, {}},
       "attributes/string-set:A~1 NeedsNotSelected\nattributes/string-set:A~2 NotSelected\n"},
      {"lines to lay apart, of which one was accepted as safe",
       "properties (Logical), A = true; end\nproperties (Logical), B = true; end\n",
       selectionOf(
           {{"attributes/logical:A", RiskType::safe}, {"attributes/logical:B", RiskType::review}}),
       "attributes/logical:B 1\nattributes/logical:A LaidApart\n"},
  };
  for (const auto& row : rows) {
    ChoiceLimits limits;
    limits.selection = &row.selection;
    EXPECT_EQ(ConvertedClass(classWith(row.body), limits).conversions(), row.conversions)
        << row.shows;
  }
}

TEST(Passes, AReasonShowsWhereItIs) {
  const auto reasonOf = [](const std::string& body) {
    const ConvertedClass converted(classWith(body), withoutLayout());
    return *converted.update.conversions.back().leftOut;
  };
  EXPECT_EQ(reasonOf(block(positiveInteger, "B {} = 1;")).detail,
            "the new line would be `B (1, 1) {mustBePositive, mustBeInteger} {} = 1;`: expected a "
            "line end, `;` or `,` behind the declaration, found `{`");
  const ConversionReason reason =
      reasonOf(block(logical, "") + block("properties", "B = 'a'; " + setOf("B")));
  EXPECT_EQ(reason.detail, "two of its edits meet");
  ASSERT_EQ(reason.places.size(), 1U);
  EXPECT_EQ(reason.places[0].line, 6U);
}

// Also for a client that needs no columns, and where a pass joins the rests of two lines.
TEST(Passes, LinesAreThoseOfTheTextAsItWasRead) {
  const std::string text = classWith(
      "methods (Access = protected), function f = isOutputSizeLockedImpl(o, i)\nf = o;\n"
      "end; function f = isInputSizeLockedImpl(o)\nend\nend\n");
  const ConvertedClass converted(text, {}, {.places = FindingPlacesType::members});
  ASSERT_EQ(converted.update.findings.size(), 1U);
  EXPECT_EQ(converted.update.findings[0].line, 4U) << to_string(*converted.text);
}

// The first pass deletes lines before the one that is laid apart.
TEST(Passes, WhatIsLaidApartIsReported) {
  const ConvertedClass converted(
      classWith(block("methods (Access = protected)", method("isOutputSizeLockedImpl")) +
                "properties (Logical), A = true; B = true; end % note\n" +
                block("properties", "D = 'a'; " + setOf("D"))));
  std::string found;
  for (const Conversion& each : converted.update.conversions) {
    const ConversionReason* layout = each.findLaidApart();
    if (layout == nullptr) continue;
    EXPECT_EQ(each.risk.type, RiskType::review);
    for (const RelatedPlace& place : layout->places) {
      found += fmt::format("{} {}: {}:{}-{}:{}, now {}\n", each.pass, each.member, place.line,
                           place.column, place.endLine, place.endColumn, place.newPlace.line);
    }
  }
  EXPECT_EQ(found, "2 A: 8:1-8:53, now 5\n2 D: 10:1-10:52, now 9\n");
}

TEST(Passes, FewFailuresAreFoundAmongMany) {
  std::string declarations;
  for (int i = 0; i < 1000; ++i) {
    const std::string name = "P" + std::to_string(i);
    declarations += name + " = 'a';\n" + setOf(name, i % 100 == 50 ? "" : "'a'") + "\n";
  }
  const ConvertedClass converted(classWith(block("properties", declarations)));
  const auto sets = ConversionKindType::stringSet;
  EXPECT_EQ(converted.update.conversionCounts[sets], 990U);
  EXPECT_EQ(converted.update.leftOutCounts[sets], 10U);
  const auto isOfFirstPass = [](const Conversion& each) { return each.pass == 1; };
  EXPECT_EQ(std::ranges::count_if(converted.update.conversions, isOfFirstPass), 990);
}

// With the line ends of all lines but the one with this number.
std::string withReturns(const std::string& text, std::size_t other) {
  std::string result;
  std::size_t line = 0;
  for (const char each : text) {
    if (each == '\n' && line++ != other) result += '\r';
    result += each;
  }
  return result;
}

TEST(Passes, LinesEndLikeTheirNeighbours) {
  const std::string methods = "methods (Access = protected)";
  const std::string set = "velum.system.StringSet({'a', ...\n'b'";
  const std::string list = "classdef C < velum.System & ...\n  velum.system.mixin.";
  const std::pair<const char*, std::string> rows[] = {
      {"a negation at returns and at the end",
       classWith(block(methods, method("isInputSizeLockedImpl", "i; % a\rb\nif i, return, end")))},
      {"a list of superclasses on two lines", list + "Propagates\nend\n"},
      {"a list on three lines, with a comment after it",
       list + "Propagates & ... x\nvelum.system.mixin.SampleTime % y\nend\n"},
      {"a companion on two lines after another property",
       classWith(block("properties", "A = 'a'\nB = 1; ASet = " + set + "})"))},
      {"a companion on three lines, with a property after it",
       classWith(block("properties", "A = 'a'\nB = 1; ASet = " + set + " ...\n}); D = 1"))},
      {"a companion without a delimiter",
       classWith(block("properties", "A = 'a'\nB = 1; ASet = " + set + "})  \nend\nproperties"))},
      {"a block after another one",
       classWith("properties\nA = 'a'\nend, " +
                 block("properties (Hidden)", "ASet = " + set + "})"))},
      {"a method after the opening of its block",
       classWith(methods + ", " + method("isOutputSizeLockedImpl") + "end\n")},
  };
  constexpr std::size_t none = std::string::npos;
  const auto convert = [](const std::string& text) {
    return to_string(*ConvertedClass(text, limitsOf(RiskType::unsafe)).text);
  };
  for (const auto& [shows, text] : rows) {
    const std::string plain = convert(text);
    EXPECT_NE(plain, text) << shows;
    EXPECT_EQ(convert(withReturns(text, none)), withReturns(plain, none)) << shows;
    // One line ends in another way, and the last one has no line end.
    for (std::ptrdiff_t line = std::ranges::count(text, '\n') - 2; line >= 0; --line) {
      std::string mixed = withReturns(text, static_cast<std::size_t>(line));
      std::string result = convert(mixed.substr(0, mixed.size() - 2)) + "\r\n";
      for (std::size_t at = 0; (at = result.find("\r\n", at)) != none;) result.erase(at, 1);
      EXPECT_EQ(result, plain) << shows << ", line " << line;
    }
  }
}

// The first pass deletes lines before all others.
TEST(Passes, PlacesAreInTheTextAsItWasRead) {
  const ConvertedClass converted(
      classWith(block("methods (Access = protected)", method("isOutputSizeLockedImpl")) +
                block("properties", "A = 'a';\nB = 'a';\n" + setOf("A") + " " + setOf("B")) +
                block(logical, "X") + block(positiveInteger, "D {} = 1;") +
                block("methods (Access = protected)", method("isInputSizeLockedImpl", "true"))));
  std::string places;
  for (const Conversion& each : converted.update.conversions) {
    places += fmt::format("{} {}: {}\n", each.pass, each.member, each.place.start.line + 1);
  }
  EXPECT_EQ(places,
            "1 A: 9\n1 isInputSizeLockedImpl: 20\n1 isOutputSizeLockedImpl: 3\n2 B: 10\n"
            "2 isInputSizeLockedImpl: 20\n0 D: 17\n");
  ASSERT_EQ(converted.update.findings.size(), 1U);
  EXPECT_EQ(converted.update.findings[0].line, 14U);
  EXPECT_EQ(converted.update.findings[0].newPlace.line, 10U);
}

// The second pass finds the first property where texts that are compared show a companion that the
// first pass deleted.
TEST(Passes, APlaceIsThatOfTheDeclaration) {
  const ConvertedClass converted(
      "classdef C < velum.System\nproperties (PositiveInteger), BSet = "
      "velum.system.StringSet({'a', "
      "...\n 'b'}) ; A = 1; B = 'a'; end\nend\n",
      limitsOf(RiskType::unsafe));
  const auto& found = converted.update.conversions;
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found.back().id, "C#attributes/positive-integer:A");
  EXPECT_EQ(found.back().place, (Extent{{2, 9}, {2, 10}}));
}

TEST(Passes, AClassThatChangesTooOftenIsAFault) {
  const TemporaryFolder folder;
  folder.write("C.vlm", classWith(block(logical, "A = true;")));
  PathDispatcher::getDispatcher().setClassPath({folder.path()});
  const ChoiceLimits limits;
  const auto makeAfter = [&](unsigned changes) {
    auto planned = planUpdate(u"C", allFamilies, false, {.keepLines = true, .listFaults = true});
    ClassPasses passes(std::move(planned.front()), &limits, {}, {.changes = changes});
    return passes.makePass();
  };
  EXPECT_TRUE(makeAfter(200));
  EXPECT_THROW(makeAfter(300), NotSettled);
}

// Classes whose conversions are often on one line, or change what is a comment.
std::string randomBody(std::mt19937& random) {
  const auto pick = [&](const std::vector<std::string>& some) {
    return some[random() % some.size()];
  };
  const auto end = [&] {
    return random() % 6 > 0 ? "\n" : pick({" ", " %{\n", " %}\n", " ...\n", " %{\n%}\n"});
  };
  std::string body;
  for (std::size_t blocks = 1 + random() % 5; blocks > 0; --blocks) {
    const bool hasMethods = random() % 5 == 0;
    body += hasMethods ? pick({"methods (Access = protected)\n", "methods\n"})
                       : pick({"properties\n", "properties (Hidden)\n", "properties (Logical)\n",
                               "properties (Logical, PositiveInteger)\n", "properties (Logical),",
                               "properties (Hidden, Logical) %{\n"});
    for (std::size_t members = random() % 4; members > 0; --members) {
      const std::string name = pick({"A", "B", "D"});
      body += hasMethods ? method(pick({"isInputSizeLockedImpl", "isInputSizeMutableImpl"}))
                         : pick({name + " = 1;", name + " = 'a';", name + " {} = 1;", setOf(name),
                                 setOf(name, ""), name + " = 'a'; " + setOf(name)}) +
                               end();
    }
    body += "end" + end();
  }
  return body;
}

TEST(Passes, NothingIsLeftOutThatCouldBeMade) {
  int converted = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    const std::string text = classWith(randomBody(random));
    const RiskType risk = seed % 2 == 0 ? RiskType::review : RiskType::unsafe;
    if (ca::analyzeText(fl::i18n::to_ustring(text))->hasSyntaxError()) continue;
    const ConvertedClass result(text, limitsOf(risk));
    ASSERT_EQ(result.leftOutTooMuch(), "")
        << text << result.conversions() << to_string(*result.text);
    converted += result.update.updated ? 1 : 0;
  }
  EXPECT_GT(converted, 50);
}

}  // namespace
}  // namespace soca
