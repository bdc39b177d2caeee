// The rule family for deprecated *Impl methods.
#pragma once

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"

namespace soca {

// Renames the methods that have a new name, turning the result round where the new name asks the
// opposite; deletes those that are obsolete; and deletes those that strict defaults make redundant:
//
//   function flag = isInputSizeLockedImpl(~, ~)        function flag = isInputSizeMutableImpl(~, ~)
//       flag = false;                             ->       flag = true;
//   end                                                end
//
// A method that is not as expected is left as it is, with a message. References to a method are
// never changed; a message tells of them.
class ImplDeprecationFactory : public AbstractActionFactory {
 public:
  explicit ImplDeprecationFactory(MetaDataInterface* metaData) : metaData_(metaData) {}

  RuleResult createActions(const AnalyzedClass& analyzedClass) const override;

 private:
  // Given to every family that may ask about other classes. These rules get along with what the
  // class's own description says.
  [[maybe_unused]] MetaDataInterface* metaData_;
};

}  // namespace soca
