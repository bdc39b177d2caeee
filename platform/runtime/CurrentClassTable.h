// The class table that a client has set.
#pragma once

#include <memory>

#include "platform/runtime/ClassTable.h"

namespace sotarn {

// Null for none.
std::shared_ptr<const ClassTable> currentClassTable();

}  // namespace sotarn
