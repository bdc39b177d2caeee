#include "service/UpdaterImpl.h"

#include "rules/RuleFamilies.h"
#include "service/ActionCollection.h"
#include "service/ActionReport.h"
#include "service/ApplyUpdates.h"
#include "service/ClassReport.h"
#include "service/ServiceContext.h"

namespace soca {

std::vector<UpdateResult> UpdaterImpl::update(const fl::ustring& className, const UpdateMask& mask,
                                              bool includeSuperclasses) {
  const ServiceContext context(mask);
  return applyUpdates(className, context.metaData.get(), context.factories, includeSuperclasses);
}

fl::ustring UpdaterImpl::reportActions(const fl::ustring& className, bool includeSuperclasses) {
  const ServiceContext context(allFamilies);
  ClassList classes = collectClasses(className, context.metaData.get(), includeSuperclasses);
  return formatActionReport(collectActions(classes, context.factories));
}

fl::ustring UpdaterImpl::reportClass(const fl::ustring& className) {
  return formatClassReport(className);
}

}  // namespace soca
