// Constrained sets that the source declares.
#pragma once

#include "platform/analyzer/tree/Ast.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Adds constrained sets to the properties of `description`, which are those of `classdef`. Property
// `Mode` has a set if the default value of the property `ModeSet` of the same class is a call of a
// set class.
void describeConstrainedSets(const ca::astapi::Classdef& classdef, ClassDescription& description);

}  // namespace sotarn
