// The rule family for deprecated custom attributes of properties blocks.
#pragma once

#include "rules/AbstractActionFactory.h"

namespace soca {

// Moves what a block's attributes, or a companion property that holds a StringSet, say of a
// property into the property's own declaration:
//
//   properties (PositiveInteger)                      properties
//       Count = 3;                               ->       Count (1, 1) {mustBePositive, ...} = 3;
//
//   properties (Logical)                              properties
//       Flag = true;                             ->       Flag (1, 1) logical = true;
//
//   Mode = 'a';                                       Mode (1, :) char {velum.system.mustBeMember(
//   ModeSet = velum.system.StringSet({'a', 'b'});  ->     Mode, {'a', 'b'})} = 'a';
//
// A block that is or becomes empty goes; a block that comes to equal its neighbour joins it. What
// can't be converted is left as it is, with a message.
class CustomAttributeDeprecationFactory : public AbstractActionFactory {
 public:
  RuleResult createActions(const AnalyzedClass& analyzedClass) const override;
};

}  // namespace soca
