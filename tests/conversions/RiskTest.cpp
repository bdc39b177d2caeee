#include "conversions/risk/RiskJudge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca {
namespace {

using fl::i18n::to_string;

// The class C of the text, with the other classes of its folder.
struct JudgedClass {
  explicit JudgedClass(const std::string& text, const std::string& base = "",
                       const std::string& top = "") {
    folder.write("C.vlm", text);
    if (!base.empty()) folder.write("Base.vlm", base);
    if (!top.empty()) folder.write("Top.vlm", top);
    PathDispatcher::getDispatcher().setClassPath({folder.path()});
    planned = std::move(planActions(u"C", allFamilies, false).front());
    risks = judgeRisks(planned);
  }

  // One line for each conversion that is not safe.
  std::string summary() const {
    const char* const names[] = {"safe", "review", "unsafe"};
    const auto ids = makeConversionIds(*planned.analysis, planned.conversions);
    std::string text;
    for (std::size_t i = 0; i < risks.size(); ++i) {
      if (risks[i].type == RiskType::safe && risks[i].reasons.empty()) continue;
      text += to_string(ids[i]) + " " + names[static_cast<int>(risks[i].type)];
      for (const ConversionReason& reason : risks[i].reasons) text += " " + reason.id.substr(5);
      text += "\n";
    }
    return text;
  }

  TemporaryFolder folder;
  PlannedClass planned;
  std::vector<ConversionRisk> risks;
};

std::string classWith(const std::string& body, const std::string& superClasses = "velum.System") {
  return "classdef (StrictDefaults) C < " + superClasses + "\n" + body + "end\n";
}

std::string methods(const std::string& functions) {
  return "methods (Access = protected)\n" + functions + "end\n";
}

constexpr const char* lockedMethod = "function f = isInputSizeLockedImpl(o, i)\nf = o.X;\nend\n";
constexpr const char* redundantMethod =
    "function f = isInputSizeMutableImpl(o, i)\nf = false;\nend\n";
constexpr const char* brokenBase = "classdef Base < velum.System\nproperties\nX = (;\nend\nend\n";

std::string negated(const std::string& body) {
  return classWith(methods("function f = isInputSizeLockedImpl(o, i)\n" + body + "end\n"));
}

TEST(RiskJudge, JudgesEachConversion) {
  struct Row {
    const char* shows;
    std::string text;
    const char* risks;
    std::string base = {};
    std::string top = {};
  };
  const std::string set = "SSet = velum.system.StringSet({'a', 'b'})";
  const Row rows[] = {
      // --- superclasses ---
      {"nothing but mixins", classWith("", "velum.system.mixin.Propagates"), ""},
      {"a mixin beside the base", classWith("", "velum.System & velum.system.mixin.Propagates"),
       ""},
      {"the base is added beside another", classWith("", "handle & velum.system.mixin.Propagates"),
       "mixins review SystemAdded\n"},
      {"one that stays is not found",
       classWith("properties (Logical)\nA = true;\nend\n",
                 "Lost & velum.system.mixin.Propagates & velum.System"),
       "mixins unsafe SuperClassUnresolved\n"},
      {"one that stays is not found, and the base is added",
       classWith("", "Lost & velum.system.mixin.Propagates"),
       "mixins unsafe SuperClassUnresolved SystemAdded\n"},
      {"one with syntax errors, which some rules query",
       classWith("properties (Logical)\nA = true;\nend\nproperties (Logical = false)\nB = 2;\nend\n"
                 "properties (Hidden)\nend\nproperties\nS = 'a';\n" +
                     set + ";\nend\n" +
                     methods(std::string(redundantMethod) +
                             "function f = isOutputSizeLockedImpl(o, i)\nf = 1;\nend\n" +
                             "function processInputSizeChangeImpl(o, i)\nend\n"),
                 "Base & velum.system.mixin.Propagates"),
       "attributes/logical:A unsafe SuperClassUnresolved\n"
       "attributes/string-set:S unsafe SuperClassUnresolved\n"
       "mixins unsafe SuperClassUnresolved\n"
       "impl/delete-redundant:isInputSizeMutableImpl unsafe SuperClassUnresolved\n",
       brokenBase},
      // --- methods ---
      {"the old method stays", classWith(methods(std::string(redundantMethod) + lockedMethod)),
       "impl/delete-redundant:isInputSizeMutableImpl unsafe OldMethodStays\n"},
      {"the old method is only declared",
       classWith(methods(redundantMethod) +
                 "methods (Abstract)\nisInputSizeLockedImpl(o, i)\nend\n"),
       ""},
      {"a superclass gains the method", classWith(methods(redundantMethod), "Base"),
       "impl/delete-redundant:isInputSizeMutableImpl unsafe SuperClassGainsMethod\n",
       "classdef Base < velum.System\n" + methods(lockedMethod) + "end\n"},
      {"one above it", classWith(methods(redundantMethod), "Base"),
       "impl/delete-redundant:isInputSizeMutableImpl unsafe SuperClassGainsMethod\n",
       "classdef Base < Top\nend\n",
       "classdef Top < velum.System\n" + methods(lockedMethod) + "end\n"},
      {"one that does not rename its own, which is not protected",
       classWith(methods(redundantMethod), "Base"), "",
       "classdef Base < velum.System\nmethods\n" + std::string(lockedMethod) + "end\nend\n"},
      {"references stay",
       classWith(methods("function f = isOutputSizeLockedImpl(o, i)\nf = 1;\nend\n"
                         "function processInputSizeChangeImpl(o, i)\nend\n"
                         "function x(o)\nprocessInputSizeChangeImpl(o, 1);\n"
                         "o.isOutputSizeLockedImpl(1);\nend\n")),
       "impl/rename:processInputSizeChangeImpl unsafe StillReferenced\n"
       "impl/delete-obsolete:isOutputSizeLockedImpl unsafe StillReferenced\n"},
      // --- negated results ---
      {"a constant, a property, an element, an operation",
       negated("x = [i 1];\nif i\nf = o.X;\nreturn\nend\nf = x(1);\nf = ~g(i);\nf = true;\n"), ""},
      {"a call", negated("if i\nf = g(i);\nend\n"),
       "impl/rename-negate:isInputSizeLockedImpl review CallNegated\n"},
      {"a call in parentheses, without arguments", negated("f = (g);\n"),
       "impl/rename-negate:isInputSizeLockedImpl review CallNegated\n"},
      {"that of a superclass, as one of several results",
       negated("[f, x] = isInputSizeLockedImpl@Base(o, i);\n"),
       "impl/rename-negate:isInputSizeLockedImpl unsafe StillReferenced CallNegated\n"},
      {"a call for another variable", negated("x = g(i);\nf = x;\n"), ""},
      {"variable outputs",
       classWith(methods(
           "function varargout = isInputSizeLockedImpl(o, i)\nvarargout{1} = o.g(i);\nend\n")),
       "impl/rename-negate:isInputSizeLockedImpl review CallNegated\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(JudgedClass(row.text, row.base, row.top).summary(), row.risks) << row.shows;
  }
}

TEST(RiskJudge, FindsCommentsThatAreDeleted) {
  const struct {
    const char* shows;
    std::string text;
    // The lines of the comments, for each conversion that deletes any.
    const char* lines;
  } rows[] = {
      {"in the list of superclasses",
       "classdef C < velum.System & ... one\n  velum.system.mixin.Propagates & ... two\n  "
       "velum.system.mixin.SampleTime % stays\nend\n",
       "mixins 1 2\n"},
      {"in it, also if a name is the same text",
       "classdef C < handle ... handle\n  & velum.system.mixin.Propagates & velum.System\nend\n",
       "mixins 1\n"},
      {"after it, where nothing else is left of the line",
       "classdef C < velum.System & ...\n  velum.system.mixin.Propagates ... one\n  \nend\n",
       "mixins 2\n"},
      {"in an attribute list, except in a value that stays",
       classWith("properties (Access = {?A, ... stays\n?B}, ... one\nLogical)\nA = true;\nend\n"),
       "attributes/logical:A 3\n"},
      {"before the list of a block that is joined",
       classWith("properties (Logical)\nA = true;\nend\nproperties ... one\n(Logical)\nB = "
                 "true;\nend\n"),
       "attributes/logical:A 5\nattributes/logical:B 5\n"},
      {"in a size, but not after the declaration",
       classWith("properties (Logical)\nA (1, ... one\n1) = true; % stays\nend\n"),
       "attributes/logical:A 3\n"},
      {"in a companion, after a literal with the signs of one",
       classWith("properties\nS = 'a';\nSSet = velum.system.StringSet({'a', '% no', ...one\n"
                 "'b''...', \"%\"}) ... two\n; % stays\nend\n"),
       "attributes/string-set:S 4 5\n"},
      {"in a block that goes with its companions",
       classWith("properties\nS = 'a';\nend\nproperties (Hidden) % one\n%{\ntwo\n%}\n"
                 "SSet = velum.system.StringSet({'a'});\nend % stays\n"),
       "attributes/string-set:S 5\n"},
      {"in a block without properties",
       classWith("properties\n% one\n\n% two\nend\nproperties % three\nend\n"),
       "attributes/empty-block:1 3\nattributes/empty-block:2 7\n"},
      {"around a deleted method, and not in it",
       classWith(methods("% stays\nfunction f = isOutputSizeLockedImpl(o, i)\n% no\nf = 1; end ... "
                         "one\n;\nfunction f = isInputSizeMutableImpl(o, i)\n% no\nf = false;\n"
                         "end % stays\n")),
       "impl/delete-obsolete:isOutputSizeLockedImpl 6\n"},
      {"in a continuation at the end of the file, which any edit deletes",
       classWith("properties (Logical)\nA = true;\nend\nproperties\nend\n") + "... one",
       "attributes/logical:A 8\nattributes/empty-block:1 8\n"},
      {"bare continuations and transposes are none",
       classWith(
           "properties\nS = 'a';\nSSet = velum.system.StringSet({'a', ...\n'%'});\nend\n"
           "properties (Logical, Description = x' + [y' z '%'] + ...\n'%')\nA = true;\nend\n"),
       ""},
  };
  for (const auto& row : rows) {
    const JudgedClass judged(row.text);
    const auto ids = makeConversionIds(*judged.planned.analysis, judged.planned.conversions);
    std::string lines;
    for (std::size_t i = 0; i < judged.risks.size(); ++i) {
      for (const ConversionReason& reason : judged.risks[i].reasons) {
        if (reason.id != "soca:CommentDeleted") continue;
        lines += to_string(ids[i]);
        for (const auto& place : reason.places) lines += " " + std::to_string(place.line);
        lines += "\n";
      }
    }
    EXPECT_EQ(lines, row.lines) << row.shows;
  }
}

// "ok", "bad" or "?", for a default value that is not known.
std::string verdictOf(const std::string& properties) {
  const JudgedClass judged(classWith(properties));
  if (judged.risks.size() != 1) return "no conversion";
  const ConversionRisk& risk = judged.risks.front();
  if (!risk.isDefaultKnown) return risk.type == RiskType::safe ? "?" : "bad?";
  if (risk.type == RiskType::safe) return "ok";
  return risk.reasons.front().id == "soca:DefaultOutsideValidators" ? "bad" : "other";
}

TEST(RiskJudge, JudgesDefaultValues) {
  const struct {
    const char* value;
    const char* positiveInteger;
    const char* logical;
    const char* characterSet;
    const char* stringSet;
  } rows[] = {
      {"1", "ok", "ok", "bad", "bad"},
      {"0", "bad", "ok", "bad", "bad"},
      {"true", "ok", "ok", "bad", "bad"},
      {"false", "bad", "ok", "bad", "bad"},
      {"3", "ok", "bad", "bad", "bad"},
      {"-3", "bad", "bad", "bad", "bad"},
      {"+1", "bad", "ok", "bad", "bad"},
      {"- -1", "bad", "ok", "bad", "bad"},
      {"0.5", "bad", "bad", "bad", "bad"},
      {"15e-1", "bad", "bad", "bad", "bad"},
      {"1.5e1", "ok", "bad", "bad", "bad"},
      {"0x1F", "ok", "bad", "bad", "bad"},
      {"1i", "bad", "bad", "bad", "bad"},
      {"NaN", "bad", "bad", "bad", "bad"},
      {"-Inf", "bad", "bad", "bad", "bad"},
      {"Inf", "bad", "bad", "bad", "bad"},
      {"[]", "bad", "bad", "bad", "bad"},
      {"{}", "bad", "bad", "bad", "bad"},
      {"[1]", "ok", "ok", "bad", "bad"},
      {"[1, []; []]", "ok", "ok", "bad", "bad"},
      {"[1 2]", "bad", "bad", "bad", "bad"},
      {"[1; 1]", "bad", "bad", "bad", "bad"},
      {"{1}", "bad", "bad", "bad", "bad"},
      {"((1))", "ok", "ok", "bad", "bad"},
      {"'a'", "bad", "bad", "ok", "ok"},
      {"\"a\"", "bad", "bad", "ok", "ok"},
      {"('it''s')", "bad", "bad", "ok", "ok"},
      {"'A'", "bad", "bad", "bad", "bad"},
      {"''", "bad", "bad", "bad", "bad"},
      {"['it''' 's']", "bad", "bad", "ok", "ok"},
      {"['it'''; 's']", "bad", "bad", "bad", "bad"},
      {"[\"a\" \"a\"]", "bad", "bad", "bad", "bad"},
      {"['a']", "bad", "bad", "ok", "ok"},
      {"[1 x]", "?", "?", "?", "?"},
      {"{x}", "?", "?", "?", "?"},
      {"1 + 1", "?", "?", "?", "?"},
      {"~true", "?", "?", "?", "?"},
      {"[1 2]'", "?", "?", "?", "?"},
      {"Color.red", "?", "?", "?", "?"},
      {"Color('a')", "?", "?", "?", "?"},
      {"1:3", "?", "?", "?", "?"},
      {"pi", "?", "?", "?", "?"},
  };
  const auto withSet = [](const std::string& value, const std::string& set) {
    return "properties\nP = " + value + ";\nPSet = velum.system.StringSet(" + set + ");\nend\n";
  };
  for (const auto& row : rows) {
    const std::string property = ")\nP = " + std::string(row.value) + ";\nend\n";
    EXPECT_EQ(verdictOf("properties (PositiveInteger" + property), row.positiveInteger)
        << row.value;
    EXPECT_EQ(verdictOf("properties (Logical" + property), row.logical) << row.value;
    EXPECT_EQ(verdictOf("properties (~Logical" + property), "ok") << row.value;
    EXPECT_EQ(verdictOf(withSet(row.value, "{'a', 'it''s'}")), row.characterSet) << row.value;
    EXPECT_EQ(verdictOf(withSet(row.value, "[\"a\", \"it's\"]")), row.stringSet) << row.value;
    EXPECT_EQ(verdictOf(withSet(row.value, "{}")), *row.characterSet == '?' ? "?" : "ok")
        << row.value << ", set without values";
  }
  EXPECT_EQ(verdictOf("properties\nP\nPSet = velum.system.StringSet({'a'});\nend\n"), "ok");
}

TEST(RiskJudge, NamesAndPlacesWhatItIsAbout) {
  std::string many;
  std::string calls;
  for (int i = 1; i <= 60; ++i) {
    many += "P" + std::to_string(i) + " = [1 ...\n2];\n";
    calls += "processInputSizeChangeImpl(o, 1);\n";
  }
  const struct {
    const char* shows;
    std::string text;
    const char* detail;
    std::size_t places;
    std::uint64_t line;
    std::uint64_t column;
  } rows[] = {
      {"a default value", classWith("properties (Logical)\nA = true;\nGain = 0.5;\nend\n"),
       "the default of property 'Gain' is 0.5, which is no logical value", 1, 4, 8},
      {"many default values", classWith("properties (PositiveInteger)\n" + many + "end\n"),
       "the defaults of the properties 'P1' ([1 ...), 'P2' ([1 ...), 'P3' ([1 ...), 'P4' "
       "([1 ...), 'P5' ([1 ...), 'P6' ([1 ...), 'P7' ([1 ...), 'P8' ([1 ...) and 52 "
       "more are no positive integers",
       50, 3, 6},
      {"many references",
       classWith(methods("function processInputSizeChangeImpl(o, i)\nend\nfunction f(o)\n" + calls +
                         "end\n")),
       "the source code refers to 'processInputSizeChangeImpl' in 60 places", 50, 6, 1},
      {"an unresolved superclass", classWith("", "handle & Lost & velum.system.mixin.Propagates"),
       "the superclass 'Lost', named by 'C', was not found, so it is not known what its list of "
       "superclasses has to be; name the root of 'Lost' with --path, or list in a class table what "
       "it derives from",
       1, 1, 40},
      {"the old method", classWith(methods(std::string(redundantMethod) + lockedMethod)),
       "the class has 'isInputSizeLockedImpl' too, which would take the place of "
       "'isInputSizeMutableImpl'",
       1, 6, 14},
      {"a negated call", negated("f = g(i);\n"),
       "the result that is negated is that of the call g(i)", 1, 4, 5},
      {"a comment", classWith("properties\n  % nothing here \nend\n"),
       "the comment \"% nothing here\" would be deleted", 1, 3, 3},
  };
  for (const auto& row : rows) {
    const JudgedClass judged(row.text);
    const auto risk = std::ranges::max_element(judged.risks, {}, &ConversionRisk::type);
    ASSERT_FALSE(risk == judged.risks.end() || risk->reasons.empty()) << row.shows;
    const ConversionReason& reason = risk->reasons.front();
    EXPECT_EQ(reason.detail, row.detail) << row.shows;
    ASSERT_EQ(reason.places.size(), row.places) << row.shows;
    EXPECT_EQ(reason.places.front().line, row.line) << row.shows;
    EXPECT_EQ(reason.places.front().column, row.column) << row.shows;
  }
}

}  // namespace
}  // namespace soca
