// Constrained sets as source declares them.
#pragma once

#include "platform/analyzer/tree/Ast.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Adds to the properties of `description`, which are those of `classdef`, the sets that companions
// of the same class hold: property `Mode` is a target when `ModeSet` has a call of a set class as
// its default value.
void describeConstrainedSets(const ca::astapi::Classdef& classdef, ClassDescription& description);

}  // namespace sotarn
