// The examples of the explanations match the behaviour of the system.
#include "reports/explanations/MessageExplanations.h"

#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/risk/RiskJudge.h"
#include "platform/failure/Exception.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "reports/explanations/ProgramMessages.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using Ids = std::vector<std::string>;

// The result of an update of one class file: its text, the ids of the failure or of the findings,
// and those of the reasons that its conversions are not safe.
struct Outcome {
  std::string text;
  Ids ids;
  Ids reasons;
};

// Updates the class Mixer with this text.
Outcome updateMixer(std::string_view source) {
  const std::string& root = PathDispatcher::getDispatcher().classPath().front();
  const fl::filesystem::OverlayScope overlay(root + "/Mixer.vlm", fl::i18n::to_ustring(source));
  Outcome outcome;
  try {
    const std::vector<PlannedClass> plan = planUpdate(u"Mixer", allFamilies, false);
    outcome.text = fl::i18n::to_string(plan.front().text());
    for (const RuleFinding& finding : plan.front().findings) {
      outcome.ids.push_back(finding.message.id);
    }
    for (const ConversionRisk& risk : judgeRisks(plan.front())) {
      for (const ConversionReason& reason : risk.reasons) outcome.reasons.push_back(reason.id);
    }
    if (plan.front().missingDelimiter) outcome.ids.emplace_back("soca:DelimiterNotFound");
  } catch (const foundation::core::except::IMsgIDException& failure) {
    outcome.ids.push_back(failure.GetBaseMsgIDObj().id);
  } catch (const std::out_of_range&) {
    outcome.ids.emplace_back("std::out_of_range");
  }
  return outcome;
}

// Whether the source before the fix is a class that shows the fault without further files; one with
// a comment only describes the fault.
bool showsItsFault(const MessageExplanation& entry) {
  return entry.before.find('%') == std::string_view::npos;
}

TEST(Explanations, TheSourceBeforeRaisesTheIdAndTheSourceAfterRaisesNone) {
  for (const auto entries : {messageExplanations(), programExplanations()}) {
    for (const MessageExplanation& entry : entries) {
      if (!showsItsFault(entry)) continue;
      const bool isReason = entry.kind == MessageKindType::reason;
      const Outcome before = updateMixer(entry.before);
      EXPECT_EQ(isReason ? before.reasons : before.ids, Ids{std::string(entry.id)});
      const Outcome after = updateMixer(entry.after);
      EXPECT_EQ(isReason ? after.reasons : after.ids, Ids{}) << entry.id;
    }
  }
}

TEST(Explanations, TheSourceAfterARuleIsWhatTheUpdateMakes) {
  for (const RuleExplanation& rule : ruleExplanations()) {
    const Outcome outcome = updateMixer(rule.before);
    EXPECT_EQ(outcome.text, rule.after) << rule.id;
    EXPECT_EQ(outcome.ids, Ids{}) << rule.id;
  }
}

TEST(Explanations, NothingIsLeftOut) {
  EXPECT_GE(messageExplanations().size(), 18U);
  for (const RuleFamily& family : ruleFamilies) {
    EXPECT_NE(findRuleExplanation(family.name), nullptr) << family.name;
  }
  for (const auto entries : {messageExplanations(), programExplanations()}) {
    for (const MessageExplanation& entry : entries) {
      for (const std::string_view text :
           {entry.text, entry.meaning, entry.cause, entry.fix, entry.before, entry.after}) {
        EXPECT_FALSE(text.empty()) << entry.id;
      }
      EXPECT_EQ(entry.rule.empty(), entry.kind != MessageKindType::finding) << entry.id;
      EXPECT_TRUE(entry.rule.empty() || findRuleExplanation(entry.rule)) << entry.id;
    }
  }
}

TEST(Explanations, PlaceholdersAreFilledInOnePass) {
  const struct {
    const char* what;
    const char* pattern;
    std::vector<std::string> arguments;
    const char* filled;
  } cases[] = {
      {"in any order, more than once", "{1} {0} {1}", {"a", "b"}, "b a b"},
      {"an argument that looks like one stays", "'{0}' is '{1}'", {"{1}", "x"}, "'{1}' is 'x'"},
      {"one without an argument stays", "{0} {2}", {"a", "b"}, "a {2}"},
      {"other braces stay", "{} {a} {10} {0", {"a"}, "{} {a} {10} {0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(fillPlaceholders(c.pattern, c.arguments), c.filled) << c.what;
  }
}

TEST(Explanations, AreFoundByExactIdsOnly) {
  for (const char* id : {"", "syntaxerror", "Analyzer:SyntaxError", "mixins"}) {
    EXPECT_EQ(findMessageExplanation(id), nullptr) << id;
  }
  EXPECT_EQ(findRuleExplanation("SyntaxError"), nullptr);
}

}  // namespace
}  // namespace soca
