#include "service/UpdatePlan.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "model/SourceFile.h"
#include "platform/paths/FileView.h"
#include "platform/text/TextSearch.h"
#include "service/ActionApplier.h"
#include "service/ActionCollection.h"
#include "service/ApplyUpdates.h"
#include "service/ClassLoader.h"
#include "service/ServiceContext.h"

namespace soca {
namespace {

// A class with its actions, and the number of actions of each family.
struct CountedActions {
  ClassActions entry;
  std::vector<std::size_t> actionCounts;
};

PlannedEdit makeEdit(const SingleAction& action) {
  return {action.getExtent(), action.getText(), action.getDelimiterFlags()};
}

std::vector<PlannedEdit> makeEdits(const Action& action) {
  std::vector<PlannedEdit> edits;
  if (!action.isGroup()) {
    edits.push_back(makeEdit(static_cast<const SingleAction&>(action)));
    return edits;
  }
  const ActionList& children = static_cast<const ActionGroup&>(action).getActions();
  edits.reserve(children.size());
  for (const auto& child : children) {
    if (!child->isGroup()) edits.push_back(makeEdit(static_cast<const SingleAction&>(*child)));
  }
  return edits;
}

// Frees each action once it is planned, so that memory does not hold all actions twice.
std::vector<PlannedAction> takeActions(CountedActions& counted,
                                       const std::vector<RuleFamilyType>& families) {
  ActionList& left = counted.entry.actions;
  std::vector<PlannedAction> actions;
  actions.reserve(left.size());
  for (std::size_t i = 0; i < families.size(); ++i) {
    for (std::size_t count = counted.actionCounts[i]; count > 0; --count) {
      const Action& action = *left.front();
      actions.push_back({families[i], action.isGroup(), action.getExtent(), makeEdits(action)});
      left.pop_front();
    }
  }
  return actions;
}

// The text after the actions; empty if a delimiter is missing for one of them.
std::optional<fl::ustring> applyActions(const PlannedClass& planned,
                                        std::optional<SourcePosition>& missingDelimiter) {
  SourceFile file(planned.analysis->sourceTextView());
  ActionApplier applier(&file, planned.result.fileName);
  for (const PlannedAction& action : planned.actions) {
    missingDelimiter = applier.applyUnlessDelimiterMissing(action);
    if (missingDelimiter) return std::nullopt;
  }
  return takeText(file);
}

// Frees everything of the class that is not part of the plan.
PlannedClass planWithoutText(CountedActions& counted, const std::vector<RuleFamilyType>& families) {
  PlannedClass planned;
  planned.result = makeResult(counted.entry);
  planned.analysis = counted.entry.analyzedClass->analysis;
  planned.oldText = planned.analysis->sharedSourceText();
  planned.oldFile = planned.analysis->file();
  planned.actions = takeActions(counted, families);
  counted.entry.messages.clear();
  counted.entry.analyzedClass.reset();
  return planned;
}

PlannedClass planClass(CountedActions& counted, const std::vector<RuleFamilyType>& families) {
  PlannedClass planned = planWithoutText(counted, families);
  std::optional<fl::ustring> text;
  if (!planned.actions.empty()) text = applyActions(planned, planned.missingDelimiter);
  planned.result.updated = text.has_value();
  if (text) planned.newText = std::make_shared<const fl::ustring>(std::move(*text));
  return planned;
}

RepeatedUpdate repeatClass(CountedActions& counted, const std::vector<RuleFamilyType>& families) {
  RepeatedUpdate repeated;
  repeated.analysis = counted.entry.analyzedClass->analysis;
  if (counted.entry.actions.empty()) return repeated;
  const PlannedClass planned = planWithoutText(counted, families);
  std::optional<SourcePosition> missingDelimiter;
  const auto text = applyActions(planned, missingDelimiter);
  repeated.changesAgain = !text || !fl::areEqualTexts(*text, repeated.analysis->sourceTextView());
  return repeated;
}

// Collects all classes, and then calls `plan` for each.
template <class Planned>
std::vector<Planned> planEach(const fl::ustring& className, const UpdateMask& mask,
                              bool includeSuperclasses,
                              Planned (*plan)(CountedActions&,
                                              const std::vector<RuleFamilyType>&)) {
  const fl::filesystem::FileView::CallScope view;
  const ServiceContext context(mask);
  const auto families = selectRuleFamilies(mask);
  std::vector<CountedActions> collected;
  for (auto& analyzedClass :
       collectClasses(className, context.metaData.get(), includeSuperclasses)) {
    CountedActions& counted = collected.emplace_back();
    counted.entry =
        collectClassActions(std::move(analyzedClass), context.factories, counted.actionCounts);
  }
  std::vector<Planned> planned;
  for (CountedActions& counted : collected) planned.push_back(plan(counted, families));
  return planned;
}

}  // namespace

std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses) {
  return planEach(className, mask, includeSuperclasses, planClass);
}

std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses) {
  return planEach(className, mask, includeSuperclasses, planWithoutText);
}

ClassPlan planClassOnce(const fl::ustring& className, const UpdateMask& mask,
                        bool includeSuperclasses) {
  const fl::filesystem::FileView::CallScope view;
  const ServiceContext context(mask);
  ClassPlan plan;
  try {
    auto analyzedClass = ClassLoader{className, context.metaData.get()}.load();
    if (includeSuperclasses) {
      plan.superClassNames = analyzedClass->metaClass->getSuperClassNames();
    }
    plan.stage = UpdateStageType::rules;
    CountedActions counted;
    counted.entry =
        collectClassActions(std::move(analyzedClass), context.factories, counted.actionCounts);
    plan.stage = UpdateStageType::edits;
    plan.planned = planClass(counted, selectRuleFamilies(mask));
  } catch (...) {
    plan.failure = std::current_exception();
  }
  return plan;
}

RepeatedUpdate repeatUpdate(const fl::ustring& className, const UpdateMask& mask) {
  return planEach(className, mask, false, repeatClass).front();
}

}  // namespace soca
