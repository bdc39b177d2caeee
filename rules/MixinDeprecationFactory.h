// The rule family for deprecated mixin superclasses.
#pragma once

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"

namespace soca {

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
