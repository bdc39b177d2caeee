#include "service/UpdaterImpl.h"

#include "platform/paths/FileView.h"
#include "rules/RuleFamilies.h"
#include "service/ActionCollection.h"
#include "service/ActionReport.h"
#include "service/ApplyUpdates.h"
#include "service/ClassReport.h"
#include "service/ServiceContext.h"

namespace soca {

using fl::filesystem::FileView;

std::vector<UpdateResult> UpdaterImpl::update(const fl::ustring& className, const UpdateMask& mask,
                                              bool includeSuperclasses) {
  const FileView::CallScope view;
  const ServiceContext context(mask);
  return applyUpdates(className, context, includeSuperclasses);
}

fl::ustring UpdaterImpl::reportActions(const fl::ustring& className, bool includeSuperclasses) {
  const FileView::CallScope view;
  const ServiceContext context(allFamilies);
  ClassList classes = collectClasses(className, context.metaData.get(), includeSuperclasses);
  return formatActionReport(collectActions(classes, context.factories));
}

fl::ustring UpdaterImpl::reportClass(const fl::ustring& className) {
  const FileView::CallScope view;
  return formatClassReport(className);
}

}  // namespace soca
