// The rule family for deprecated mixin superclasses.
#pragma once

#include <vector>

#include "metadata/MetaDataInterface.h"
#include "model/ClassDefinition.h"
#include "platform/text/UString.h"
#include "rules/AbstractActionFactory.h"

namespace soca {

// The name of each superclass after the update: its own, that of the system base in place of the
// first mixin if the class needs it, or empty for one that is deleted.
std::vector<fl::ustring> newSuperClassNames(const std::vector<SuperClassReference>& superClasses,
                                            const MetaDataInterface& metaData);

// Removes the deprecated mixins from the superclass list. If no other superclass makes the class a
// System object, the system base replaces the first mixin:
//
//   classdef Mixer < MyBase & velum.system.mixin.CustomIcon   ->   classdef Mixer < MyBase &
//   velum.System
//
// Makes at most one action, which replaces the whole list, and no findings.
class MixinDeprecationFactory : public AbstractActionFactory {
 public:
  // `metaData` must outlive the factory.
  explicit MixinDeprecationFactory(MetaDataInterface* metaData) : metaData_(metaData) {}

  using AbstractActionFactory::createActions;
  RuleResult createActions(const AnalyzedClass& analyzedClass,
                           const ConversionChoice& choice) const override;

 private:
  MetaDataInterface* metaData_;
};

}  // namespace soca
