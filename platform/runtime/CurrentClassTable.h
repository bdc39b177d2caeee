// The class table that the client has set.
#pragma once

#include "platform/runtime/ClassTable.h"

namespace sotarn {

// Null for none. The table lives as long as the process.
const ClassTable* currentClassTable();

}  // namespace sotarn
