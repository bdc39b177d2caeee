#include "service/ApplyUpdates.h"

#include "service/ActionApplier.h"

namespace soca {

UpdateResult makeResult(const ClassActions& entry) {
  UpdateResult result;
  result.className = entry.analyzedClass->className;
  result.fileName = entry.analyzedClass->metaClass->getClassFile();
  result.messages.assign(entry.messages.begin(), entry.messages.end());
  return result;
}

fl::ustring takeText(SourceFile& file) {
  file.removeEmptiedLines();
  return file.getText();
}

UpdateResult applyClassUpdate(const ClassActions& entry) {
  UpdateResult result = makeResult(entry);
  // Without actions the text stays exactly the same: a SourceFile could remove the last line.
  if (entry.actions.empty()) {
    result.text = entry.analyzedClass->getSourceText();
    return result;
  }
  SourceFile file(entry.analyzedClass->sourceTextView());
  ActionApplier applier(&file, result.fileName);
  for (const auto& action : entry.actions) applier.apply(*action);
  result.text = takeText(file);
  result.updated = true;
  return result;
}

std::vector<UpdateResult> applyUpdates(const fl::ustring& className, MetaDataInterface* metaData,
                                       const FactoryList& factories, bool includeSuperclasses) {
  ClassList classes = collectClasses(className, metaData, includeSuperclasses);
  const auto entries = collectActions(classes, factories);
  std::vector<UpdateResult> results;
  results.reserve(entries.size());
  for (const ClassActions& entry : entries) results.push_back(applyClassUpdate(entry));
  return results;
}

}  // namespace soca
