#include "conversions/choice/ConversionChooser.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

#include "conversions/Checks.h"
#include "conversions/choice/GuiltyConversions.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using Indices = std::vector<std::size_t>;

// The largest number of new texts that are analysed for one choice, and of those in which the
// guilty conversions are looked for by the places of the faults; the others are for halving.
constexpr unsigned mostExplained = 24;
// The largest number of conversions that were left out and are tried once more, each alone.
constexpr std::size_t mostTriedAgain = 8;

// A plan with some conversions, and what is wrong with it.
struct Attempt {
  PlannedClass planned;
  std::shared_ptr<ca::AnalysisResult> updated;
  std::optional<NewTextFault> fault;

  bool isGood() const { return planned.faults.empty() && !fault; }
};

bool areSame(const std::vector<GuiltyConversion>& left,
             const std::vector<GuiltyConversion>& right) {
  return std::ranges::equal(left, right, {}, &GuiltyConversion::conversion,
                            &GuiltyConversion::conversion);
}

class Chooser {
 public:
  Chooser(PlannedClass planned, const std::vector<ConversionRisk>& risks,
          const std::vector<Wish>& wishes, const ChoiceLimits& limits,
          std::optional<FaultyText> whole)
      : whole_(std::move(planned)),
        wholeText_(std::move(whole)),
        risks_(risks),
        wishes_(wishes),
        limits_(limits),
        made_(whole_.conversions.size(), true),
        leftOut_(whole_.conversions.size()),
        needs_(findNeeds(whole_)),
        known_(whole_.analysis->knownFunctions()) {}

  ChosenConversions run(unsigned analysesBefore, const std::vector<bool>* candidates) {
    dropUnwanted();
    if (candidates != nullptr) dropAllBut(*candidates);
    if (analysesBefore >= mostAnalyses) dropUntried();
    if (std::ranges::none_of(made_, std::identity())) {
      dropActions();
      return {std::move(whole_), std::move(leftOut_), nullptr, 0};
    }
    std::optional<Attempt> good = dropGuilty();
    if (good) {
      // Without it the text has no fault.
      if (explained_.size() == 1) explained_.clear();
    } else {
      const auto metBy = std::exchange(metBy_, {});
      good = halve();
      keepGroupsTogether(*good);
      for (const auto& [met, conversion] : metBy) {
        if (!made_[met]) explained_.push_back(conversion);
      }
    }
    tryAgain(*good);
    return {std::move(good->planned), std::move(leftOut_), std::move(good->updated), analyses_};
  }

 private:
  // Visits the conversion, and those that are made with it or not at all.
  template <class Visit>
  void visitRing(std::size_t conversion, const Visit& visit) {
    std::size_t each = conversion;
    do {
      visit(each);
      each = needs_[each];
    } while (each != conversion);
  }

  void drop(std::size_t conversion, const ConversionReason& reason) {
    visitRing(conversion, [&](std::size_t each) {
      if (!made_[each]) return;
      made_[each] = false;
      leftOut_[each] = reason;
    });
    visitRing(conversion, [&](std::size_t each) { takeBackWhatMet(each); });
  }

  void dropGuiltyOfFaults(const std::vector<GuiltyConversion>& guilty) {
    for (const GuiltyConversion& each : guilty) {
      const auto isLeftOut = [&](std::size_t other) { return !made_[other]; };
      if (std::ranges::any_of(each.meets, isLeftOut)) continue;
      drop(each.conversion, each.reason);
      for (const std::size_t other : each.meets) {
        if (made_[other]) metBy_.emplace(other, each.conversion);
      }
    }
  }

  // What was left out only because it meets the conversion may be made without that.
  void takeBackWhatMet(std::size_t conversion) {
    for (auto met = metBy_.extract(conversion); met; met = metBy_.extract(conversion)) {
      const auto& reason = leftOut_[met.mapped()];
      if (!reason || reason->id != editsMeetId) continue;
      visitRing(met.mapped(), [&](std::size_t each) {
        made_[each] = true;
        leftOut_[each].reset();
      });
    }
  }

  void dropUnwanted() {
    for (std::size_t i = 0; i < wishes_.size(); ++i) {
      made_[i] = !wishes_[i].leftOut;
      leftOut_[i] = wishes_[i].leftOut;
    }
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const RiskType highestRisk = wishes_.empty() ? limits_.highestRisk : wishes_[i].highestRisk;
      if (!limits_.rules.kinds[whole_.conversions[i].kind]) {
        drop(i, {"soca:NotSelected", "its kind is not among those that were asked for", {}});
      } else if (risks_[i].type > highestRisk) {
        drop(i, risks_[i].reasons.front());
      }
    }
  }

  void dropAllBut(const std::vector<bool>& candidates) {
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (!candidates[i]) drop(i, {"soca:NotSelected", "it is not a candidate", {}});
    }
  }

  static ConversionReason notTried() {
    return {
        "soca:NotTried", fmt::format("{} texts of the class were tried before", mostAnalyses), {}};
  }

  void dropUntried() {
    for (std::size_t i = 0; i < made_.size(); ++i) drop(i, notTried());
  }

  // The plan of no conversion, without asking the rules again.
  void dropActions() {
    whole_.actions.clear();
    whole_.owners.clear();
    whole_.faults.clear();
    whole_.newText.reset();
    whole_.newLines.reset();
    whole_.result.updated = false;
    std::vector<fl::ustring> messages;
    for (std::size_t i = 0; i < whole_.findings.size(); ++i) {
      if (whole_.findings[i].conversion == noConversion) {
        messages.push_back(std::move(whole_.result.messages[i]));
      }
    }
    whole_.result.messages = std::move(messages);
    std::erase_if(whole_.findings,
                  [](const RuleFinding& finding) { return finding.conversion != noConversion; });
  }

  // The analysis is that of the overlay text, so that the plan of the next pass can use it.
  Attempt attempt(const std::vector<bool>& made) {
    Attempt result{planConversions(whole_, made, {.keepLines = true, .listFaults = true}), nullptr,
                   std::nullopt};
    if (!result.planned.faults.empty() || result.planned.newText == nullptr) return result;
    ++analyses_;
    const std::string file = fl::i18n::to_string(result.planned.result.fileName);
    {
      const fl::filesystem::OverlayScope overlay(file, result.planned.newText);
      result.updated = ca::analyzeFile(file, &known_);
    }
    result.fault = NewTextCheck(result.planned).findFault(*result.updated);
    return result;
  }

  // Of all conversions together, which were tried before.
  std::vector<GuiltyConversion> findGuiltyOfWhole() {
    ++analyses_;
    const auto text = std::exchange(wholeText_, std::nullopt);
    return findGuiltyOfText(whole_, *text->updated, text->fault);
  }

  // Leaves out conversions until the rest can be made. Empty if nothing shows which ones have to be
  // left out.
  std::optional<Attempt> dropGuilty() {
    std::vector<GuiltyConversion> suspects;
    while (analyses_ < mostExplained && plans_++ < mostAnalyses) {
      std::vector<GuiltyConversion> guilty;
      if (wholeText_) {
        guilty = findGuiltyOfWhole();
      } else {
        Attempt result = attempt(made_);
        if (result.isGood()) return result;
        if (!result.planned.faults.empty()) {
          dropGuiltyOfFaults(findGuiltyOfFaults(result.planned));
          continue;
        }
        guilty = findGuiltyOfText(result.planned, *result.updated, *result.fault);
      }
      if (guilty.empty()) return std::nullopt;
      // An error may be the effect of an earlier one. So the first of several is left out alone;
      // the others are guilty if their errors are still there.
      if (!suspects.empty() && areSame(guilty, suspects)) {
        for (const auto& each : guilty) {
          drop(each.conversion, each.reason);
          explained_.push_back(each.conversion);
        }
        suspects.clear();
        continue;
      }
      drop(guilty.front().conversion, guilty.front().reason);
      explained_.push_back(guilty.front().conversion);
      guilty.erase(guilty.begin());
      suspects = std::move(guilty);
    }
    return std::nullopt;
  }

  // A conversion that was left out before the real cause was found may be made after all.
  void tryAgain(Attempt& good) {
    if (explained_.size() > mostTriedAgain) return;
    for (const std::size_t each : explained_) {
      if (made_[each] || analyses_ >= mostAnalyses) continue;
      visitRing(each, [&](std::size_t one) { made_[one] = true; });
      Attempt again = attempt(made_);
      const bool isGood = again.isGood();
      visitRing(each, [&](std::size_t one) {
        made_[one] = isGood;
        if (isGood) leftOut_[one].reset();
      });
      if (isGood) good = std::move(again);
    }
  }

  // Makes the longest prefix that can be made, leaves out the conversion after it, and so on.
  Attempt halve() {
    Indices rest;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i]) rest.push_back(i);
    }
    made_.assign(made_.size(), false);
    Attempt good = attempt(made_);
    while (!rest.empty()) {
      const std::size_t kept = findLongestPrefix(rest, good);
      for (std::size_t i = 0; i < kept; ++i) made_[rest[i]] = true;
      if (kept < rest.size()) {
        if (!failure_) return leaveOutRest(rest, kept, std::move(good));
        leftOut_[rest[kept]] = *std::exchange(failure_, std::nullopt);
      }
      rest.erase(rest.begin(),
                 rest.begin() + static_cast<std::ptrdiff_t>(std::min(kept + 1, rest.size())));
    }
    return good;
  }

  // Leaves out the conversions of which others of their group are left out.
  void keepGroupsTogether(Attempt& good) {
    const std::vector<bool> before = made_;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i] && !made_[needs_[i]]) drop(i, ConversionReason(*leftOut_[needs_[i]]));
    }
    if (made_ == before) return;
    good = attempt(made_);
    if (good.isGood()) return;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i]) drop(i, reasonOf(good));
    }
    good = attempt(made_);
  }

  // The largest number of conversions from the start of `rest` that can be made with those that
  // are. Sets the failure of the next one, if there is one and it was tried.
  std::size_t findLongestPrefix(const Indices& rest, Attempt& good) {
    std::size_t kept = 0;
    std::size_t tooMany = rest.size() + 1;
    std::size_t next = rest.size();
    while (kept + 1 < tooMany) {
      if (analyses_ >= mostAnalyses || plans_++ >= 2 * mostAnalyses) {
        failure_.reset();
        break;
      }
      std::vector<bool> made = made_;
      for (std::size_t i = 0; i < next; ++i) made[rest[i]] = true;
      Attempt result = attempt(made);
      if (result.isGood()) {
        kept = next;
        good = std::move(result);
      } else {
        tooMany = next;
        failure_ = reasonOf(result);
      }
      next = (kept + tooMany) / 2;
    }
    return kept;
  }

  static ConversionReason reasonOf(const Attempt& attempt) {
    if (attempt.fault) return reasonFor(*attempt.fault);
    return findGuiltyOfFaults(attempt.planned).front().reason;
  }

  Attempt leaveOutRest(const Indices& rest, std::size_t kept, Attempt good) {
    for (std::size_t i = kept; i < rest.size(); ++i) {
      leftOut_[rest[i]] = {
          "soca:NotTried", "too many texts of this class have faults of unknown causes", {}};
    }
    return good;
  }

  PlannedClass whole_;
  std::optional<FaultyText> wholeText_;
  const std::vector<ConversionRisk>& risks_;
  const std::vector<Wish>& wishes_;
  const ChoiceLimits& limits_;
  std::vector<bool> made_;
  std::vector<std::optional<ConversionReason>> leftOut_;
  Indices needs_;
  ca::KnownFunctions known_;
  // Those that were left out because they meet another one, by that one.
  std::multimap<std::size_t, std::size_t> metBy_;
  // Those that were left out because of their texts.
  Indices explained_;
  // The reason for which the last attempt of a search failed.
  std::optional<ConversionReason> failure_;
  unsigned analyses_ = 0;
  unsigned plans_ = 0;
};

}  // namespace

std::vector<std::size_t> findNeeds(const PlannedClass& planned) {
  std::vector<std::size_t> needs(planned.conversions.size());
  std::unordered_map<fl::ustring_view, std::size_t> lastOfCompanion;
  for (std::size_t i = 0; i < needs.size(); ++i) {
    needs[i] = i;
    const auto* companion = planned.conversions[i].companion;
    if (companion == nullptr) continue;
    const auto [last, isFirst] = lastOfCompanion.emplace(companion->name->text.view(), i);
    if (isFirst) continue;
    std::swap(needs[i], needs[last->second]);
    last->second = i;
  }
  return needs;
}

ChosenConversions chooseConversions(PlannedClass planned, const std::vector<ConversionRisk>& risks,
                                    const std::vector<Wish>& wishes, const ChoiceLimits& limits,
                                    unsigned analysesBefore, const std::vector<bool>* candidates,
                                    std::optional<FaultyText> whole) {
  return Chooser(std::move(planned), risks, wishes, limits, std::move(whole))
      .run(analysesBefore, candidates);
}

}  // namespace soca
