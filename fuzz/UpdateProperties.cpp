#include "fuzz/UpdateProperties.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>

#include "conversions/Checks.h"
#include "fuzz/AnalysisProperties.h"
#include "fuzz/ConversionProperties.h"
#include "fuzz/KnownCauses.h"
#include "fuzz/Violation.h"
#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "service/UpdaterImpl.h"

namespace soca::fuzz {
namespace {

using fl::i18n::to_string;

constexpr const char* outOfRange = "std::out_of_range";

// The failure of `work`; empty if it succeeds.
std::string failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const foundation::core::except::IMsgIDException& failure) {
    return failure.GetID();
  } catch (const std::out_of_range&) {
    return outOfRange;
  }
  return "";
}

bool isSame(const PlannedClass& planned, const UpdateResult& result) {
  return planned.result.className == result.className &&
         planned.result.fileName == result.fileName && planned.text() == result.text &&
         planned.result.messages == result.messages && planned.result.updated == result.updated;
}

// One call of the service, and its plan.
class Call {
 public:
  Call(fl::ustring className, UpdateMask mask, bool includeSuperclasses)
      : className_(std::move(className)), mask_(mask), includeSuperclasses_(includeSuperclasses) {}

  void run() {
    failure_ = failureOf([&] { planned_ = planUpdate(className_, mask_, includeSuperclasses_); });
    const bool wouldEndProcess = std::ranges::any_of(
        planned_, [](const PlannedClass& each) { return each.missingDelimiter.has_value(); });
    if (wouldEndProcess) return;
    std::vector<UpdateResult> results;
    const std::string failure =
        failureOf([&] { results = UpdaterImpl().update(className_, mask_, includeSuperclasses_); });
    require(failure == failure_, "the plan fails with '{}' and the update with '{}'", failure_,
            failure);
    require(std::ranges::equal(planned_, results, isSame), "the plan and the update differ");
  }

  const std::vector<PlannedClass>& planned() const { return planned_; }
  const std::string& failure() const { return failure_; }

 private:
  fl::ustring className_;
  UpdateMask mask_;
  bool includeSuperclasses_;
  std::vector<PlannedClass> planned_;
  std::string failure_;
};

// The class before its actions are applied; empty if it cannot be loaded.
std::optional<PlannedClass> planAlone(const fl::ustring& className, UpdateMask mask) {
  std::optional<PlannedClass> planned;
  failureOf([&] { planned = std::move(planActions(className, mask, false).front()); });
  return planned;
}

UpdateVerdict spoiled(const PlannedClass& planned, const std::string& what) {
  const auto cause = findKnownCause(planned);
  require(cause.has_value(), "{}, for no known cause", what);
  return {UpdateVerdict::Type::spoiled, std::string(*cause)};
}

// The verdict on one class of a call that did not fail.
UpdateVerdict judge(const PlannedClass& planned) {
  if (planned.missingDelimiter) return {UpdateVerdict::Type::failed, "soca:DelimiterNotFound"};
  const fl::ustring_view oldText = planned.analysis->sourceTextView();
  require(planned.result.updated == !planned.actions.empty(), "`updated` is wrong");
  require(planned.result.updated || planned.text() == oldText, "the text changes by itself");
  if (planned.text() == oldText) return {};
  const auto analysis = analyzeChecked(fl::ustring(planned.text()));
  require(analysis != nullptr, "the new text can't be analysed");
  if (const auto reason = NewTextCheck(planned).findReasonToRefuse(*analysis)) {
    return spoiled(planned, *reason);
  }
  require(!analysis->hasSyntaxError(), "a text with syntax errors is taken");
  return {UpdateVerdict::Type::updated, ""};
}

// --- further updates ---

bool hasFamily(const PlannedClass& planned, RuleFamilyType family) {
  return std::ranges::find(planned.actions, family, &PlannedAction::family) !=
         planned.actions.end();
}

bool deletesText(const PlannedClass& planned) {
  return std::ranges::any_of(planned.actions, [](const PlannedAction& action) {
    return std::ranges::any_of(action.edits, [](const PlannedEdit& edit) {
      return edit.text.empty() && edit.extent.start != edit.extent.end;
    });
  });
}

// The rules look only at the old text, so an update may leave work to the next one: a method with a
// new name or a negated value falls under another rule; of two methods with one name each update
// takes the first; deleted text may have been the last reference to a name.
bool mayLeaveWork(const PlannedClass& first, const PlannedClass& second) {
  const bool isImplLeft = hasFamily(second, RuleFamilyType::impl);
  const bool isSetLeft = hasFamily(second, RuleFamilyType::attributes);
  if (hasFamily(second, RuleFamilyType::mixins)) return false;
  if (isImplLeft && !hasFamily(first, RuleFamilyType::impl) && !deletesText(first)) return false;
  return !isSetLeft || deletesText(first) || hasFamily(first, RuleFamilyType::impl);
}

constexpr unsigned mostUpdates = 20;

// Updates the class until an update has no actions.
unsigned updateUntilRest(const fl::ustring& className, PlannedClass planned,
                         ClassFilesScope& files) {
  for (unsigned count = 0; count < mostUpdates; ++count) {
    files.replace(to_string(className), fl::ustring(planned.text()));
    std::vector<PlannedClass> next;
    const std::string failure =
        failureOf([&] { next = planUpdate(className, allFamilies, false); });
    // Overlapping edits, or a text that the next update spoils.
    if (!failure.empty()) return count;
    if (next.front().actions.empty()) return count;
    require(mayLeaveWork(planned, next.front()), "update number {} finds something to do",
            count + 2);
    if (judge(next.front()).type == UpdateVerdict::Type::spoiled) return count;
    planned = std::move(next.front());
  }
  throw Violation("updates come to no rest");
}

UpdateVerdict checkCall(const fl::ustring& className, UpdateMask mask, bool includeSuperclasses) {
  Call call(className, mask, includeSuperclasses);
  call.run();
  if (call.failure() == outOfRange) {
    const auto planned = planAlone(className, mask);
    if (planned && !includeSuperclasses) return spoiled(*planned, call.failure());
  }
  if (!call.failure().empty()) return {UpdateVerdict::Type::failed, call.failure()};
  require(!call.planned().empty(), "an update without a result");
  UpdateVerdict verdict = judge(call.planned().front());
  for (std::size_t i = 1; i < call.planned().size(); ++i) judge(call.planned()[i]);
  return verdict;
}

void checkReports(const fl::ustring& className) {
  UpdaterImpl updater;
  fl::ustring report;
  failureOf([&] { report = updater.reportActions(className, false); });
  const std::string failure = failureOf([&] { report = updater.reportClass(className); });
  require(failure != outOfRange, "the class report fails with {}", failure);
  require(!failure.empty() || !report.empty(), "the class report is empty");
}

}  // namespace

UpdateVerdict checkUpdate(const std::vector<ClassFile>& files) {
  if (files.empty()) return {};
  ClassFilesScope scope(files);
  const fl::ustring className = fl::i18n::to_ustring(files.front().className);
  checkReports(className);
  for (const RuleFamily& family : ruleFamilies) checkCall(className, family.bit, false);
  checkCall(className, allFamilies, true);
  checkConversions(className);
  UpdateVerdict verdict = checkCall(className, allFamilies, false);
  if (verdict.type == UpdateVerdict::Type::updated) {
    PlannedClass planned = std::move(planUpdate(className, allFamilies, false).front());
    verdict.furtherUpdates = updateUntilRest(className, std::move(planned), scope);
  }
  return verdict;
}

}  // namespace soca::fuzz
