// The rule family for deprecated *Impl methods.
#pragma once

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"

namespace soca {

// Renames the methods that have a new name, and negates the result if the new name has the opposite
// meaning; deletes those that are obsolete; and deletes those that strict defaults make redundant:
//
//   function flag = isInputSizeLockedImpl(~, ~)        function flag = isInputSizeMutableImpl(~, ~)
//       flag = false;                             ->       flag = true;
//   end                                                end
//
// A method without the expected signature stays unchanged, with a finding. References to a method
// are never changed; a finding reports them.
class ImplDeprecationFactory : public AbstractActionFactory {
 public:
  explicit ImplDeprecationFactory(MetaDataInterface* metaData) : metaData_(metaData) {}

  using AbstractActionFactory::createActions;
  RuleResult createActions(const AnalyzedClass& analyzedClass,
                           const ConversionChoice& choice) const override;

 private:
  // All families that may need other classes have this parameter. These rules need only the class's
  // own description.
  [[maybe_unused]] MetaDataInterface* metaData_;
};

}  // namespace soca
