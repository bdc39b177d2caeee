// A class after all passes over it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "conversions/Checks.h"
#include "conversions/passes/ClassPasses.h"
#include "conversions/risk/RiskJudge.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::testing {

// The class C of the text after all passes over it.
class ConvertedClass {
 public:
  explicit ConvertedClass(const std::string& oldText, const ChoiceLimits& limits = {},
                          const PassNeeds& needs = {.conversions = true,
                                                    .editsOfEach = std::nullopt,
                                                    .changes = true,
                                                    .places = FindingPlacesType::members})
      : limits_(limits) {
    file_ = folder_.write("C.vlm", oldText);
    PathDispatcher::getDispatcher().setClassPath({folder_.path()});
    ClassPasses passes(plan(), &limits_, needs);
    while (passes.makePass() && passes.planNext()) continue;
    text = passes.text();
    update = passes.takeUpdate();
    if (needs.changes) {
      EXPECT_EQ(applyChanges(*passes.oldText(), passes.changes()), *text);
      for (const TextChange& each : passes.changes()) EXPECT_FALSE(each.conversions.empty());
    }
  }

  // One line for each conversion: with its pass, or with the reason for which it is left out.
  std::string conversions() const {
    std::string list;
    for (const Conversion& each : update.conversions) {
      const std::string reason = each.leftOut ? each.leftOut->id.substr(5) : "";
      list += each.id.substr(2) + " " + (each.leftOut ? reason : std::to_string(each.pass)) + "\n";
    }
    return list;
  }

  // Those that are left out although the last text could have them, each with what it needs.
  std::string leftOutTooMuch() const {
    const fl::filesystem::OverlayScope overlay(file_, text);
    const PlannedClass planned = plan();
    const auto risks = judgeRisks(planned);
    const auto needs = findNeeds(planned);
    std::string list;
    for (std::size_t i = 0; i < needs.size(); ++i) {
      std::vector<bool> made(needs.size());
      bool isWanted = true;
      for (std::size_t each = i; !made[each]; each = needs[each]) {
        made[each] = true;
        isWanted &= risks[each].type <= limits_.highestRisk &&
                    limits_.rules.kinds[planned.conversions[each].kind];
      }
      if (isWanted && canBeMade(planned, made)) list += update.conversions[i].id + "\n";
    }
    return list;
  }

  std::shared_ptr<const fl::ustring> text;
  ClassUpdate update;

 private:
  static constexpr PlanOptions options{.keepLines = true, .listFaults = true};

  PlannedClass plan() const {
    return std::move(planUpdate(u"C", limits_.rules.families, false, options).front());
  }

  bool canBeMade(const PlannedClass& planned, const std::vector<bool>& made) const {
    const PlannedClass some = planConversions(planned, made, options);
    if (some.newText == nullptr) return false;
    const fl::filesystem::OverlayScope overlay(file_, some.newText);
    return !NewTextCheck(some).findFault(*ca::analyzeFile(file_));
  }

  TemporaryFolder folder_;
  std::string file_;
  ChoiceLimits limits_;
};

}  // namespace soca::testing
