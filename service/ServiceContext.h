// What one call of the service needs and throws away again.
#pragma once

#include <list>
#include <memory>

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"
#include "soca/Updater.h"

namespace soca {

using FactoryList = std::list<std::unique_ptr<AbstractActionFactory>>;

// The factories point at the metadata, so the fields must be destroyed from the last to the first.
struct ServiceContext {
  // Makes a source of metadata that asks the environment, and the factories that `mask` selects.
  explicit ServiceContext(const UpdateMask& mask);

  std::unique_ptr<MetaDataInterface> metaData;
  // In running order, which is that of `selectRuleFamilies`.
  FactoryList factories;
};

}  // namespace soca
