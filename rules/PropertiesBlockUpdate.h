// What becomes of one properties block. Part of CustomAttributeDeprecationFactory.cpp, and included
// by nothing else.
#pragma once

#include <cstdint>
#include <list>
#include <utility>

#include "diagnostics/Findings.h"
#include "model/PropertiesBlock.h"
#include "model/Property.h"
#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {
namespace {

// The working record of one properties block. The four lists stand in the order in which they are
// handed out.
struct BlockUpdate {
  const PropertiesBlock* block;
  // What the block's logical attributes will be.
  std::uint64_t attributeMask;
  std::uint64_t remainingProperties;
  // What changes the opening of the block, its `end`, its properties, and the block as a whole.
  ActionList attributeActions;
  ActionList endActions;
  ActionList propertyActions;
  ActionList blockActions;
  std::list<fl::ustring> messages;
  // The block goes away as a whole.
  bool deleted = false;

  explicit BlockUpdate(const PropertiesBlock& propertiesBlock)
      : block(&propertiesBlock),
        attributeMask(propertiesBlock.getLogicalAttributes()),
        remainingProperties(propertiesBlock.getNumberOfProperties()) {}

  bool hasActions() const {
    return !attributeActions.empty() || !endActions.empty() || !propertyActions.empty() ||
           !blockActions.empty();
  }

  void dropActions() {
    attributeActions.clear();
    endActions.clear();
    propertyActions.clear();
    blockActions.clear();
  }

  void addGroup(ActionList&& children) {
    propertyActions.push_back(std::make_unique<ActionGroup>(std::move(children)));
  }
};

// Whether the property is abstract in some class, which a message then tells.
bool reportAbstractProperty(const Property& property, BlockUpdate& update) {
  if (!property.isAbstract()) return false;
  update.messages.push_back(findingText("CustomAttributeAbstractBaseClass", {property.getName()}));
  return true;
}

}  // namespace
}  // namespace soca
