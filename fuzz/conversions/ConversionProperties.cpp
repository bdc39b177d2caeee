#include "fuzz/conversions/ConversionProperties.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "bench/Dice.h"
#include "conversions/ConversionEdits.h"
#include "conversions/risk/RiskJudge.h"
#include "fuzz/Violation.h"
#include "fuzz/conversions/PlanAttempt.h"
#include "fuzz/conversions/SubsetCheck.h"
#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"
#include "tests/conversions/EditedBytes.h"

namespace soca::fuzz {
namespace {

using fl::i18n::to_string;

bool isSame(const PlannedEdit& left, const PlannedEdit& right) {
  return left.extent == right.extent && left.text == right.text &&
         left.delimiterFlags == right.delimiterFlags;
}

bool isSame(const PlannedAction& left, const PlannedAction& right) {
  const auto isSameEdit = [](const auto& one, const auto& other) { return isSame(one, other); };
  return left.family == right.family && left.isGroup == right.isGroup &&
         left.extent == right.extent && std::ranges::equal(left.edits, right.edits, isSameEdit);
}

PlannedClass planAll(const PlannedClass& whole, const PlanOptions& options) {
  return std::move(planUpdate(whole.result.className, whole.mask, false, options).front());
}

// Returns the members after all conversions.
std::optional<MemberTexts> checkAll(const PlannedClass& whole) {
  const std::vector<bool> made(whole.conversions.size(), true);
  const PlanAttempt attempted = attemptPlan([&] { return planConversions(whole, made); });
  const PlanAttempt update = attemptPlan([&] { return planAll(whole, optionsOf(whole)); });
  require(attempted.failure == update.failure, "all conversions fail with '{}', not '{}'",
          attempted.failure, update.failure);
  if (!update.planned) return std::nullopt;
  const PlannedClass& all = *attempted.planned;
  require(all.text() == update.planned->text(), "all conversions give another text");
  require(all.result.messages == update.planned->result.messages, "other messages");
  require(std::ranges::equal(all.actions, update.planned->actions,
                             [](const auto& one, const auto& other) { return isSame(one, other); }),
          "all conversions give other actions");
  require(all.owners == update.planned->owners, "all conversions give other owners");
  checkSubset(whole, made, nullptr);
  return findMembers(attempted);
}

void checkNone(const PlannedClass& whole) {
  const PlannedClass none =
      planConversions(whole, std::vector<bool>(whole.conversions.size(), false));
  require(none.actions.empty() && !none.result.updated && none.newText == nullptr,
          "something is done though nothing is made");
  require(none.conversions.size() == whole.conversions.size(), "other conversions are found");
}

void checkIds(const PlannedClass& whole) {
  auto ids = makeConversionIds(*whole.analysis, whole.conversions);
  std::ranges::sort(ids);
  require(std::ranges::adjacent_find(ids) == ids.end(), "two conversions have one id");
}

// All subsets of a few conversions; of more, each alone, all but each, and random ones.
std::vector<std::vector<bool>> subsetsOf(std::size_t count) {
  constexpr std::size_t few = 4;
  constexpr std::size_t mostAlone = 6;
  constexpr std::size_t randomOnes = 20;
  std::vector<std::vector<bool>> subsets;
  for (std::size_t bits = 0; count <= few && bits < std::size_t{1} << count; ++bits) {
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t i = 0; i < count; ++i) made[i] = (bits >> i & 1U) != 0;
  }
  if (count <= few) return subsets;
  for (std::size_t i = 0; i < std::min(count, mostAlone); ++i) {
    subsets.emplace_back(count)[i] = true;
    subsets.emplace_back(count, true)[i] = false;
  }
  bench::Dice dice(count);
  for (std::size_t i = 0; i < randomOnes; ++i) {
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t each = 0; each < count; ++each) made[each] = dice.once(2);
  }
  return subsets;
}

// The edits of each conversion give the text with only this one.
void checkEditsOfEach(const PlannedClass& whole) {
  const PlanAttempt update = attemptPlan([&] { return planAll(whole, optionsOf(whole)); });
  if (!update.planned || update.planned->newText == nullptr) return;
  auto conversions = describeConversions(*update.planned);
  findEditsOfEach(*update.planned, fl::EncodingType::utf8, conversions);
  for (std::size_t i = 0; i < conversions.size(); ++i) {
    std::vector<bool> made(conversions.size());
    made[i] = true;
    const PlanAttempt alone = attemptPlan([&] { return planConversions(whole, made); });
    const std::string expected = to_string(alone.planned ? alone.planned->text() : *whole.oldText);
    const std::string edited = testing::applyAll(conversions[i].edits, to_string(*whole.oldText));
    require(edited == expected, "the edits of '{}' give another text", conversions[i].id);
  }
}

void checkRisks(const PlannedClass& whole) {
  const auto risks = judgeRisks(whole);
  require(risks.size() == whole.conversions.size(), "{} risks", risks.size());
  for (const ConversionRisk& risk : risks) {
    require(risk.reasons.empty() == (risk.type == RiskType::safe), "a risk without a reason");
    for (const ConversionReason& reason : risk.reasons) {
      require(!reason.detail.empty(), "{} without a detail", reason.id);
      for (const RelatedPlace& place : reason.places) {
        require(place.line > 0 && place.line <= place.endLine, "{} without a place", reason.id);
      }
    }
  }
}

}  // namespace

void checkConversions(const fl::ustring& className, const PlanOptions& options) {
  std::optional<PlannedClass> whole;
  try {
    whole = std::move(options.isTidy ? planUpdate(className, allFamilies, false, options).front()
                                     : planActions(className, allFamilies, false).front());
  } catch (const foundation::core::except::IMsgIDException&) {
    return;
  }
  checkIds(*whole);
  const auto all = checkAll(*whole);
  checkNone(*whole);
  checkEditsOfEach(*whole);
  checkRisks(*whole);
  for (const std::vector<bool>& made : subsetsOf(whole->conversions.size())) {
    try {
      checkSubset(*whole, made, all ? &*all : nullptr);
    } catch (const Violation& violation) {
      std::string ids;
      const auto plain = plainIds(*whole);
      for (std::size_t i = 0; i < made.size(); ++i) ids += made[i] ? plain[i] + ' ' : "";
      throw Violation(fmt::format("with {}made: {}", ids, violation.what()));
    }
  }
}

}  // namespace soca::fuzz
