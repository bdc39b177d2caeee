#include "service/UpdatePlan.h"

#include <cstddef>
#include <utility>

#include "service/ActionCollection.h"
#include "service/ApplyUpdates.h"
#include "service/ServiceContext.h"

namespace soca {
namespace {

// The classes with their actions, and how many of them each family gave.
struct CountedActions {
  ClassActions entry;
  std::vector<std::size_t> actionCounts;
};

PlannedEdit makeEdit(const SingleAction& action) {
  return {action.getExtent(), action.getText(), action.getDelimiterFlags()};
}

std::vector<PlannedEdit> makeEdits(const Action& action) {
  if (!action.isGroup()) return {makeEdit(static_cast<const SingleAction&>(action))};
  std::vector<PlannedEdit> edits;
  for (const auto& child : static_cast<const ActionGroup&>(action).getActions()) {
    if (!child->isGroup()) edits.push_back(makeEdit(static_cast<const SingleAction&>(*child)));
  }
  return edits;
}

std::vector<PlannedAction> makeActions(const CountedActions& counted,
                                       const std::vector<RuleFamilyType>& families) {
  std::vector<PlannedAction> actions;
  auto next = counted.entry.actions.begin();
  for (std::size_t i = 0; i < families.size(); ++i) {
    for (std::size_t left = counted.actionCounts[i]; left > 0; --left, ++next) {
      actions.push_back({families[i], (*next)->isGroup(), (*next)->getExtent(), makeEdits(**next)});
    }
  }
  return actions;
}

PlannedClass planClass(const CountedActions& counted, const std::vector<RuleFamilyType>& families) {
  ClassUpdate update = applyClassUpdate(counted.entry, MissingDelimiterType::endsClass);
  return {std::move(update.result), counted.entry.analyzedClass->analysis,
          makeActions(counted, families), update.missingDelimiter};
}

PlannedClass planWithoutApplying(const CountedActions& counted,
                                 const std::vector<RuleFamilyType>& families) {
  const AnalyzedClass& analyzedClass = *counted.entry.analyzedClass;
  PlannedClass planned;
  planned.result.className = analyzedClass.className;
  planned.result.fileName = analyzedClass.metaClass->getClassFile();
  planned.result.text = analyzedClass.getSourceText();
  planned.analysis = analyzedClass.analysis;
  planned.actions = makeActions(counted, families);
  return planned;
}

// Collects the classes and makes what `plan` says of each. All are collected before the first is
// planned.
template <class Plan>
std::vector<PlannedClass> planEach(const fl::ustring& className, const UpdateMask& mask,
                                   bool includeSuperclasses, const Plan& plan) {
  const ServiceContext context(mask);
  const auto families = selectRuleFamilies(mask);
  std::vector<CountedActions> collected;
  for (auto& analyzedClass :
       collectClasses(className, context.metaData.get(), includeSuperclasses)) {
    CountedActions& counted = collected.emplace_back();
    counted.entry =
        collectClassActions(std::move(analyzedClass), context.factories, counted.actionCounts);
  }
  std::vector<PlannedClass> planned;
  for (const CountedActions& counted : collected) planned.push_back(plan(counted, families));
  return planned;
}

}  // namespace

std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses) {
  return planEach(className, mask, includeSuperclasses, planClass);
}

std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses) {
  return planEach(className, mask, includeSuperclasses, planWithoutApplying);
}

}  // namespace soca
