// The objects that one call of the service needs.
#pragma once

#include <list>
#include <memory>
#include <vector>

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"
#include "rules/RuleFamilies.h"
#include "soca/Updater.h"

namespace soca {

using FactoryList = std::list<std::unique_ptr<AbstractActionFactory>>;

// The factories point to the metadata, so the fields must be destroyed from the last to the first.
struct ServiceContext {
  // Makes the metadata of the environment, and the factories that the mask selects.
  explicit ServiceContext(const UpdateMask& selected);

  UpdateMask mask;
  std::unique_ptr<MetaDataInterface> metaData;
  // In the order in which they run, with the factories in the same order.
  std::vector<RuleFamilyType> families;
  FactoryList factories;
};

}  // namespace soca
