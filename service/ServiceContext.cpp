#include "service/ServiceContext.h"

#include "metadata/VELUMMetaDataInterface.h"

namespace soca {

ServiceContext::ServiceContext(const UpdateMask& selected)
    : mask(selected),
      metaData(std::make_unique<VELUMMetaDataInterface>()),
      families(selectRuleFamilies(mask)) {
  for (const RuleFamilyType family : families) {
    factories.push_back(ruleFamily(family).makeFactory(metaData.get()));
  }
}

}  // namespace soca
