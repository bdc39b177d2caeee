#include "service/UpdatePlan.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "model/AnalyzerPositions.h"
#include "platform/paths/FileView.h"
#include "platform/text/TextSearch.h"
#include "service/ActionCollection.h"
#include "service/ClassLoader.h"
#include "service/ServiceContext.h"
#include "service/UpdatedClass.h"

namespace soca {
namespace {

using fl::filesystem::FileView;

// Collects all classes, and then calls `take` for each.
template <class Take>
void takeEach(const fl::ustring& className, const ServiceContext& context, bool includeSuperclasses,
              const Take& take) {
  ClassList classes = collectClasses(className, context.metaData.get(), includeSuperclasses);
  for (ClassActions& entry : collectActions(classes, context.factories)) take(std::move(entry));
}

PlannedClass finishPlan(UpdatedClass update, const PlanOptions& options) {
  PlannedClass planned = std::move(update.planned);
  if (!update.file) return planned;
  planned.newText = std::make_shared<const fl::ustring>(update.file->getText());
  if (options.keepLines) {
    planned.newLines = std::make_shared<const SourceFile>(std::move(*update.file));
  }
  return planned;
}

// The planned class as an argument for the rules.
std::unique_ptr<AnalyzedClass> reloadClass(const PlannedClass& planned,
                                           const MetaDataInterface& metaData) {
  auto metaClass = metaData.getMetaClass(planned.result.className);
  auto definition = std::make_unique<ClassDefinition>(
      planned.analysis->getClassdef(), ClassContext{planned.analysis.get(), metaClass.get()});
  return std::make_unique<AnalyzedClass>(AnalyzedClass{
      planned.result.className, std::move(metaClass), planned.analysis, std::move(definition)});
}

}  // namespace

std::span<const ActionOwner> PlannedClass::ownersOf(std::size_t action) const {
  const auto range = std::ranges::equal_range(owners, static_cast<std::uint32_t>(action), {},
                                              &ActionOwner::action);
  return {range.begin(), range.end()};
}

Member PlannedClass::memberOf(const RuleFinding& finding) const {
  return {finding.memberName->text.getText(), makeExtentOfNode(*analysis, *finding.member),
          makeExtentOfNode(*analysis, *finding.memberName)};
}

std::vector<FindingPlace> PlannedClass::placesOf(const RuleFinding& finding) const {
  if (finding.findPlaces == nullptr) return {};
  return finding.findPlaces(*analysis, finding);
}

std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses, const PlanOptions& options) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  std::vector<PlannedClass> planned;
  takeEach(className, context, includeSuperclasses, [&](ClassActions entry) {
    planned.push_back(finishPlan(
        updateClass(std::move(entry), context, MissingDelimiterType::stopsUpdate), options));
  });
  return planned;
}

std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  std::vector<PlannedClass> planned;
  takeEach(className, context, includeSuperclasses,
           [&](ClassActions entry) { planned.push_back(planClass(std::move(entry), context)); });
  return planned;
}

PlannedClass planConversions(const PlannedClass& planned, const std::vector<bool>& made,
                             const PlanOptions& options) {
  const FileView::CallScope view;
  const ServiceContext context(planned.mask);
  ClassActions entry = collectClassActions(reloadClass(planned, *context.metaData),
                                           context.factories, ConversionChoice(&made));
  return finishPlan(updateClass(std::move(entry), context, MissingDelimiterType::stopsUpdate),
                    options);
}

ClassPlan planClassOnce(const fl::ustring& className, const UpdateMask& mask,
                        bool includeSuperclasses, const PlanOptions& options) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  ClassPlan plan;
  try {
    auto analyzedClass = ClassLoader{className, context.metaData.get()}.load();
    if (includeSuperclasses) {
      plan.superClassNames = analyzedClass->metaClass->getSuperClassNames();
    }
    plan.stage = UpdateStageType::rules;
    ClassActions entry = collectClassActions(std::move(analyzedClass), context.factories);
    plan.stage = UpdateStageType::edits;
    plan.planned = finishPlan(
        updateClass(std::move(entry), context, MissingDelimiterType::stopsUpdate), options);
  } catch (...) {
    plan.failure = std::current_exception();
  }
  return plan;
}

RepeatedUpdate repeatUpdate(const fl::ustring& className, const UpdateMask& mask) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  RepeatedUpdate repeated;
  takeEach(className, context, false, [&](ClassActions entry) {
    repeated.analysis = entry.analyzedClass->analysis;
    if (entry.actions.empty()) return;
    const UpdatedClass update =
        updateClass(std::move(entry), context, MissingDelimiterType::stopsUpdate);
    repeated.changesAgain =
        update.file ? !fl::areEqualTexts(update.file->getText(), *update.planned.oldText)
                    : update.planned.missingDelimiter.has_value();
  });
  return repeated;
}

}  // namespace soca
