#include "service/ServiceContext.h"

#include "metadata/VELUMMetaDataInterface.h"
#include "rules/CustomAttributeDeprecationFactory.h"
#include "rules/ImplDeprecationFactory.h"
#include "rules/MixinDeprecationFactory.h"
#include "service/RuleFamily.h"

namespace soca {
namespace {

std::unique_ptr<AbstractActionFactory> makeFactory(RuleFamilyType family,
                                                   MetaDataInterface* metaData) {
  switch (family) {
    case RuleFamilyType::attributes:
      return std::make_unique<CustomAttributeDeprecationFactory>();
    case RuleFamilyType::mixins:
      return std::make_unique<MixinDeprecationFactory>(metaData);
    case RuleFamilyType::impl:
      return std::make_unique<ImplDeprecationFactory>(metaData);
  }
  return nullptr;
}

}  // namespace

ServiceContext::ServiceContext(const UpdateMask& mask)
    : metaData(std::make_unique<VELUMMetaDataInterface>()) {
  for (const RuleFamilyType family : selectRuleFamilies(mask)) {
    factories.push_back(makeFactory(family, metaData.get()));
  }
}

}  // namespace soca
