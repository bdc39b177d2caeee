#include "service/UpdatePlan.h"

#include <exception>
#include <memory>
#include <utility>

#include "platform/paths/FileView.h"
#include "platform/text/TextSearch.h"
#include "service/ActionCollection.h"
#include "service/ClassLoader.h"
#include "service/EditedClass.h"
#include "service/ServiceContext.h"

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

PlannedClass finishPlan(ClassActions entry, const ServiceContext& context,
                        const PlanOptions& options) {
  const auto style = options.isTidy ? EditStyleType::tidy : EditStyleType::ofService;
  EditedClass update =
      options.listFaults ? editClassListingFaults(std::move(entry), context, style)
                         : editClass(std::move(entry), context, MissingDelimiterType::stopsUpdate);
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

std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses, const PlanOptions& options) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  std::vector<PlannedClass> planned;
  takeEach(className, context, includeSuperclasses, [&](ClassActions entry) {
    planned.push_back(finishPlan(std::move(entry), context, options));
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
  PlanOptions all = options;
  all.listFaults |= planned.listsFaults;
  all.isTidy |= planned.isTidy;
  return finishPlan(std::move(entry), context, all);
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
    plan.planned = finishPlan(std::move(entry), context, options);
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
    const EditedClass update =
        editClass(std::move(entry), context, MissingDelimiterType::stopsUpdate);
    repeated.changesAgain =
        update.file ? !fl::areEqualTexts(update.file->getText(), *update.planned.oldText)
                    : update.planned.missingDelimiter.has_value();
  });
  return repeated;
}

}  // namespace soca
