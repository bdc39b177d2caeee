#include "service/ApplyUpdates.h"

#include "model/SourceFile.h"
#include "service/ActionApplier.h"

namespace soca {
namespace {

// Applies the actions in order, up to the first that must not be applied.
std::optional<SourcePosition> applyActions(const ActionList& actions, ActionApplier& applier,
                                           MissingDelimiterType missingDelimiter) {
  for (const auto& action : actions) {
    if (missingDelimiter == MissingDelimiterType::endsProcess) {
      applier.apply(*action);
    } else if (const auto place = applier.applyUnlessDelimiterMissing(*action)) {
      return place;
    }
  }
  return std::nullopt;
}

fl::ustring cleanText(SourceFile& file) {
  file.removeEmptiedLines();
  return file.getText();
}

}  // namespace

ClassUpdate applyClassUpdate(const ClassActions& entry, MissingDelimiterType missingDelimiter) {
  const AnalyzedClass& analyzedClass = *entry.analyzedClass;
  ClassUpdate update;
  UpdateResult& result = update.result;
  result.className = analyzedClass.className;
  result.fileName = analyzedClass.metaClass->getClassFile();
  result.messages.assign(entry.messages.begin(), entry.messages.end());
  // Without actions the text stays as it is, to the character: no file is made, since cleaning it
  // up can take away a last line.
  if (!entry.actions.empty()) {
    SourceFile file(analyzedClass.sourceTextView());
    ActionApplier applier(&file, result.fileName);
    update.missingDelimiter = applyActions(entry.actions, applier, missingDelimiter);
    result.updated = !update.missingDelimiter;
    if (result.updated) result.text = cleanText(file);
  }
  if (!result.updated) result.text = analyzedClass.getSourceText();
  return update;
}

std::vector<UpdateResult> applyUpdates(const fl::ustring& className, MetaDataInterface* metaData,
                                       const FactoryList& factories, bool includeSuperclasses) {
  ClassList classes = collectClasses(className, metaData, includeSuperclasses);
  const auto entries = collectActions(classes, factories);
  std::vector<UpdateResult> results;
  results.reserve(entries.size());
  for (const ClassActions& entry : entries) {
    results.push_back(applyClassUpdate(entry, MissingDelimiterType::endsProcess).result);
  }
  return results;
}

}  // namespace soca
