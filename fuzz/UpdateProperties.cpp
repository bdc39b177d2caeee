#include "fuzz/UpdateProperties.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "conversions/Checks.h"
#include "fuzz/AnalysisProperties.h"
#include "fuzz/Violation.h"
#include "fuzz/conversions/ConversionProperties.h"
#include "fuzz/conversions/PassProperties.h"
#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "service/UpdaterImpl.h"

namespace soca::fuzz {
namespace {

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

// One call of the service for the first class of the files, and its plan.
class Call {
 public:
  Call(const std::vector<ClassFile>* files, UpdateMask mask, bool includeSuperclasses)
      : files_(files),
        className_(fl::i18n::to_ustring(files->front().className)),
        mask_(mask),
        includeSuperclasses_(includeSuperclasses) {}

  void run() {
    failure_ = failureOf([&] { planned_ = planUpdate(className_, mask_, includeSuperclasses_); });
    if (wouldEndProcess(planned_)) return;
    // A plan of several classes that fails does not show which of them would end the process.
    if (includeSuperclasses_ && !failure_.empty() && wouldEndWithoutSuperclasses()) return;
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
  static bool wouldEndProcess(const std::vector<PlannedClass>& planned) {
    return std::ranges::any_of(
        planned, [](const PlannedClass& each) { return each.missingDelimiter.has_value(); });
  }

  bool wouldEndWithoutSuperclasses() const {
    return std::ranges::any_of(*files_, [&](const ClassFile& file) {
      std::vector<PlannedClass> planned;
      const fl::ustring name = fl::i18n::to_ustring(file.className);
      failureOf([&] { planned = planUpdate(name, mask_, false); });
      return wouldEndProcess(planned);
    });
  }

  const std::vector<ClassFile>* files_;
  fl::ustring className_;
  UpdateMask mask_;
  bool includeSuperclasses_;
  std::vector<PlannedClass> planned_;
  std::string failure_;
};

// The verdict on one class of a call that did not fail.
UpdateVerdict judge(const PlannedClass& planned) {
  if (planned.missingDelimiter) return {UpdateVerdict::Type::failed, "soca:DelimiterNotFound"};
  const fl::ustring_view oldText = planned.analysis->sourceTextView();
  require(planned.result.updated == !planned.actions.empty(), "`updated` is wrong");
  require(planned.result.updated || planned.text() == oldText, "the text changes by itself");
  if (planned.text() == oldText) return {};
  const auto analysis = analyzeChecked(fl::ustring(planned.text()));
  require(analysis != nullptr, "the new text can't be analysed");
  if (NewTextCheck(planned).findFault(*analysis)) return {UpdateVerdict::Type::refused, ""};
  require(!analysis->hasSyntaxError(), "a text with syntax errors is taken");
  return {UpdateVerdict::Type::updated, ""};
}

UpdateVerdict checkCall(const std::vector<ClassFile>& files, UpdateMask mask,
                        bool includeSuperclasses) {
  Call call(&files, mask, includeSuperclasses);
  call.run();
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
  const ClassFilesScope scope(files);
  const fl::ustring className = fl::i18n::to_ustring(files.front().className);
  checkReports(className);
  for (const RuleFamily& family : ruleFamilies) checkCall(files, family.bit, false);
  checkCall(files, allFamilies, true);
  checkConversions(className, {});
  checkConversions(className, {.keepLines = true, .listFaults = true, .isTidy = true});
  UpdateVerdict verdict = checkCall(files, allFamilies, false);
  checkPasses(className, RiskType::unsafe);
  checkPasses(className, RiskType::unsafe, /*isTidy=*/true);
  verdict.passes = checkPasses(className, RiskType::review);
  return verdict;
}

}  // namespace soca::fuzz
