#include "service/ApplyUpdates.h"

#include <utility>

#include "service/ActionCollection.h"
#include "service/EditedClass.h"

namespace soca {

std::vector<UpdateResult> applyUpdates(const fl::ustring& className, const ServiceContext& context,
                                       bool includeSuperclasses) {
  ClassList classes = collectClasses(className, context.metaData.get(), includeSuperclasses);
  std::vector<UpdateResult> results;
  for (ClassActions& entry : collectActions(classes, context.factories)) {
    EditedClass edited = editClass(std::move(entry), context, MissingDelimiterType::endsProcess);
    UpdateResult& result = results.emplace_back(std::move(edited.planned.result));
    result.text = edited.file ? edited.file->getText() : *edited.planned.oldText;
  }
  return results;
}

}  // namespace soca
