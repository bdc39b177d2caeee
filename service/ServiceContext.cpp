#include "service/ServiceContext.h"

#include "metadata/VELUMMetaDataInterface.h"
#include "rules/RuleFamilies.h"

namespace soca {

ServiceContext::ServiceContext(const UpdateMask& mask)
    : metaData(std::make_unique<VELUMMetaDataInterface>()) {
  for (const RuleFamilyType family : selectRuleFamilies(mask)) {
    factories.push_back(ruleFamily(family).makeFactory(metaData.get()));
  }
}

}  // namespace soca
