// Which conversions of a class are made.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "conversions/Checks.h"
#include "conversions/choice/Wishes.h"
#include "conversions/risk/Risk.h"
#include "conversions/selection/ConversionSelection.h"
#include "platform/analyzer/AnalysisResult.h"
#include "rules/RuleFamilies.h"
#include "service/PlannedClass.h"

namespace soca {

// What a person lets the program do.
struct ChoiceLimits {
  RiskType highestRisk = RiskType::review;
  RuleChoice rules;
  // Whether lines may be laid apart for conversions whose edits meet.
  bool mayLayApart = true;
  // Null if all conversions are selected. Must outlive what is made with the limits.
  const ConversionSelection* selection = nullptr;
};

// For each conversion of the class the next one that is made with it or not at all, in a ring; a
// conversion that needs no other has its own index. Sets of which several use one companion are
// such: it goes only with all of them, and a set that is converted while its companion stays would
// be found again.
std::vector<std::size_t> findNeeds(const PlannedClass& planned);

// The largest number of new texts that are analysed for one class, about: what is undecided then is
// left out.
inline constexpr unsigned mostAnalyses = 64;

struct ChosenConversions {
  // With the made conversions alone. Its new text, if it has one, has passed all checks.
  PlannedClass planned;
  // For each conversion of the class, why it is not made; empty if it is.
  std::vector<std::optional<ConversionReason>> leftOut;
  // The analysis of the new text; null if there is none.
  std::shared_ptr<ca::AnalysisResult> updated;
  // The number of new texts that were analysed.
  unsigned analyses = 0;
};

// A new text with faults.
struct FaultyText {
  std::shared_ptr<ca::AnalysisResult> updated;
  NewTextFault fault;
};

// Chooses as many conversions as can be made together, within the limits, and makes them.
// `planned` must be the plan with all conversions that lists its faults; `risks` has one entry for
// each, and `wishes` too, unless it is empty. `analysesBefore` are those of earlier passes over the
// class. Only the analysis of the plan and of each new text that is tried is kept at a time. Only
// conversions with `true` in `candidates` are made; null for all. `whole` is the new text of the
// plan if it is known to have faults. Throws what the rules throw.
ChosenConversions chooseConversions(PlannedClass planned, const std::vector<ConversionRisk>& risks,
                                    const std::vector<Wish>& wishes, const ChoiceLimits& limits,
                                    unsigned analysesBefore = 0,
                                    const std::vector<bool>* candidates = nullptr,
                                    std::optional<FaultyText> whole = {});

}  // namespace soca
