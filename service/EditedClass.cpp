#include "service/EditedClass.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "diagnostics/Findings.h"
#include "service/ActionApplier.h"
#include "service/LineEnds.h"
#include "service/TidyEdits.h"

namespace soca {
namespace {

// Frees each action once it is planned, so that memory does not hold all actions twice.
std::vector<PlannedAction> takeActions(ClassActions& entry,
                                       const std::vector<RuleFamilyType>& families) {
  ActionList& left = entry.actions;
  std::vector<PlannedAction> actions;
  actions.reserve(left.size());
  for (std::size_t i = 0; i < families.size(); ++i) {
    for (std::size_t count = entry.actionCounts[i]; count > 0; --count) {
      actions.push_back(planAction(*left.front(), families[i]));
      left.pop_front();
    }
  }
  return actions;
}

UpdateResult makeResult(const ClassActions& entry) {
  UpdateResult result;
  result.className = entry.analyzedClass->className;
  result.fileName = entry.analyzedClass->metaClass->getClassFile();
  std::ranges::transform(entry.findings, std::back_inserter(result.messages),
                         [](const RuleFinding& finding) { return findingText(finding.message); });
  return result;
}

// `applyAll` applies the actions of the plan, and returns whether the update is complete.
template <class ApplyAll>
EditedClass editWith(const ApplyAll& applyAll, PlannedClass plan) {
  EditedClass edited{std::move(plan), std::nullopt};
  PlannedClass& planned = edited.planned;
  // Without actions the text stays exactly the same: a SourceFile could remove the last line.
  if (planned.actions.empty()) return edited;
  edited.file.emplace(fl::ustring_view(*planned.oldText));
  ActionApplier applier(&*edited.file, planned.result.fileName);
  if (!applyAll(applier, *edited.file, planned)) {
    edited.file.reset();
    return edited;
  }
  edited.file->removeEmptiedLines();
  planned.result.updated = true;
  return edited;
}

}  // namespace

PlannedClass planClass(ClassActions&& entry, const ServiceContext& context) {
  PlannedClass planned;
  planned.result = makeResult(entry);
  planned.mask = context.mask;
  planned.analysis = entry.analyzedClass->analysis;
  planned.oldText = planned.analysis->sharedSourceText();
  planned.oldFile = planned.analysis->file();
  planned.actions = takeActions(entry, context.families);
  planned.findings = std::move(entry.findings);
  planned.conversions = std::move(entry.conversions);
  planned.owners = std::move(entry.owners);
  return planned;
}

EditedClass editClass(ClassActions entry, const ServiceContext& context,
                      MissingDelimiterType missingDelimiter) {
  const auto applyAll = [&](ActionApplier& applier, const SourceFile&, PlannedClass& planned) {
    for (const PlannedAction& action : planned.actions) {
      if (missingDelimiter == MissingDelimiterType::endsProcess) {
        applier.apply(action);
      } else if ((planned.missingDelimiter = applier.tryApply(action))) {
        return false;
      }
    }
    return true;
  };
  return editWith(applyAll, planClass(std::move(entry), context));
}

EditedClass editClassListingFaults(ClassActions entry, const ServiceContext& context,
                                   EditStyleType style) {
  const auto& definition = *entry.analyzedClass->definition;
  const auto applyAll = [&](ActionApplier& applier, const SourceFile& file, PlannedClass& planned) {
    adaptInsertedLineEnds(file, planned.actions);
    if (style == EditStyleType::tidy) tidyEdits(definition, *context.metaData, file, planned);
    keepCarriageReturns(file, planned.actions);
    for (std::size_t i = 0; i < planned.actions.size(); ++i) {
      if (auto fault = applier.applyOrFault(planned.actions[i])) {
        fault->action = i;
        planned.faults.push_back(*fault);
      }
    }
    return planned.faults.empty();
  };
  PlannedClass plan = planClass(std::move(entry), context);
  plan.listsFaults = true;
  plan.isTidy = style == EditStyleType::tidy;
  return editWith(applyAll, std::move(plan));
}

}  // namespace soca
