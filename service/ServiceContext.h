// The objects that one call of the service needs.
#pragma once

#include <list>
#include <memory>

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"
#include "soca/Updater.h"

namespace soca {

using FactoryList = std::list<std::unique_ptr<AbstractActionFactory>>;

// The factories point to the metadata, so the fields must be destroyed from the last to the first.
struct ServiceContext {
  // Makes the metadata of the environment, and the factories that `mask` selects.
  explicit ServiceContext(const UpdateMask& mask);

  std::unique_ptr<MetaDataInterface> metaData;
  // In the order in which they run, which is that of `selectRuleFamilies`.
  FactoryList factories;
};

}  // namespace soca
