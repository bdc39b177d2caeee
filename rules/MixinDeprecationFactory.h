// The rule family for deprecated mixin superclasses.
#pragma once

#include "metadata/MetaDataInterface.h"
#include "rules/AbstractActionFactory.h"

namespace soca {

// Takes the deprecated mixins out of the superclass list. Where nothing else in the list makes the
// class a System object, the base class takes the place of the first mixin:
//
//   classdef Mixer < MyBase & velum.system.mixin.CustomIcon   ->   classdef Mixer < MyBase &
//   velum.System
//
// There is one action at most, which writes the whole list anew, and never a message.
class MixinDeprecationFactory : public AbstractActionFactory {
 public:
  // `metaData` must outlive the factory.
  explicit MixinDeprecationFactory(MetaDataInterface* metaData) : metaData_(metaData) {}

  RuleResult createActions(const AnalyzedClass& analyzedClass) const override;

 private:
  MetaDataInterface* metaData_;
};

}  // namespace soca
