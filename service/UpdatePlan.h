// The effect of an update on each class, action by action and conversion by conversion: for clients
// in this process that report lines, print edits, or make only some of the conversions.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "service/PlannedClass.h"
#include "soca/Updater.h"

namespace soca {

// The parts of a plan that clients can request.
struct PlanOptions {
  bool keepLines = false;
  // Actions that cannot be applied are listed in the plan, in place of an exception for the first;
  // and inserted lines end like their neighbours, which those of the service do not.
  bool listFaults = false;
  // Edits that leave the text tidy, which those of the service do not. Only if faults are listed.
  bool isTidy = false;
};

// The options to plan the class again as it was planned, with its lines.
inline PlanOptions optionsOf(const PlannedClass& planned) {
  return {.keepLines = true, .listFaults = planned.listsFaults, .isTidy = planned.isTidy};
}

// The classes and results of `Updater::update` with the same arguments; throws the same exceptions.
std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses, const PlanOptions& options = {});

// The same classes and actions, but not applied: overlaps raise nothing, and there are no new
// texts.
std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses);

// Plans the class again with only those conversions whose index has `true` in `made`, and the
// findings that result. Does not read or analyse the file again. With all conversions, the result
// and the exceptions are those of `planUpdate`; with none, the text does not change. Lists faults,
// and makes tidy edits, if `planned` does.
PlannedClass planConversions(const PlannedClass& planned, const std::vector<bool>& made,
                             const PlanOptions& options = {});

// The stages of an update, each of which is done for all classes before the next one.
enum class UpdateStageType { loading, rules, edits };

// The part that one class has in an update with superclasses.
struct ClassPlan {
  // The next classes of the walk, if the class could be loaded and they were asked for.
  std::vector<fl::ustring> superClassNames;
  // Null if a stage failed, which is then `stage`, with the exception that `planUpdate` throws.
  std::optional<PlannedClass> planned;
  UpdateStageType stage = UpdateStageType::loading;
  std::exception_ptr failure;
};

// Plans the class alone, for clients that plan each class once for all that derive from it. An
// update with superclasses fails with the first class that fails in the earliest stage.
ClassPlan planClassOnce(const fl::ustring& className, const UpdateMask& mask,
                        bool includeSuperclasses, const PlanOptions& options = {});

// The result of updating again a class that was just updated.
struct RepeatedUpdate {
  std::shared_ptr<ca::AnalysisResult> analysis;
  // Whether the update changes the text again, or stops because of a missing delimiter.
  bool changesAgain = false;
};

// Updates the class alone, as `planUpdate` does, and throws the same exceptions.
RepeatedUpdate repeatUpdate(const fl::ustring& className, const UpdateMask& mask);

}  // namespace soca
