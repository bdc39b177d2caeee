// The rule family for deprecated custom attributes of properties blocks.
#pragma once

#include "rules/AbstractActionFactory.h"

namespace soca {

// Replaces attributes of a block, and companion properties that hold a StringSet, by validation
// syntax in the declarations of the properties concerned:
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
// A block that is or becomes empty is deleted; a block that becomes equal to its neighbour is
// joined with it. What cannot be converted stays unchanged, with a finding.
class CustomAttributeDeprecationFactory : public AbstractActionFactory {
 public:
  using AbstractActionFactory::createActions;
  RuleResult createActions(const AnalyzedClass& analyzedClass,
                           const ConversionChoice& choice) const override;
};

}  // namespace soca
