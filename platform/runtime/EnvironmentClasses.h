// The environment's own classes, which have no file.
#pragma once

#include <memory>
#include <string_view>

#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// The description of an environment class; null for any other name.
std::shared_ptr<const ClassDescription> describeEnvironmentClass(std::string_view name);

}  // namespace sotarn
