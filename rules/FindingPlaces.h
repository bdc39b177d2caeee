// The places of the findings of the rules, which are searched only for clients that need them.
#pragma once

#include "rules/RuleFinding.h"

namespace soca {

// Only those in the file of the class.
PlaceFinder findAbstractAttributes;

// For findings about a property and its companion.
PlaceFinder findGetMethod;
PlaceFinder findCompanionDefault;
PlaceFinder findCompanionUse;

// For findings about a method.
PlaceFinder findOtherMethod;
// The parts that differ from the expected signature and access.
PlaceFinder findSignature;
PlaceFinder findReferences;

}  // namespace soca
