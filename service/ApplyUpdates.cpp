#include "service/ApplyUpdates.h"

#include <utility>

#include "service/ActionCollection.h"
#include "service/UpdatedClass.h"

namespace soca {

std::vector<UpdateResult> applyUpdates(const fl::ustring& className, const ServiceContext& context,
                                       bool includeSuperclasses) {
  ClassList classes = collectClasses(className, context.metaData.get(), includeSuperclasses);
  std::vector<UpdateResult> results;
  for (ClassActions& entry : collectActions(classes, context.factories)) {
    UpdatedClass update = updateClass(std::move(entry), context, MissingDelimiterType::endsProcess);
    UpdateResult& result = results.emplace_back(std::move(update.planned.result));
    result.text = update.file ? update.file->getText() : *update.planned.oldText;
  }
  return results;
}

}  // namespace soca
