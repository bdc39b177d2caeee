// The update of one properties block. Included only by CustomAttributeDeprecationFactory.cpp.
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

// The edits and messages for one properties block. The four lists of actions are applied in their
// order here.
struct BlockUpdate {
  const PropertiesBlock* block;
  // The block's logical attributes after the update.
  std::uint64_t attributeMask;
  std::uint64_t remainingProperties;
  // The edits of the block's opening, its `end`, its properties, and the whole block.
  ActionList attributeActions;
  ActionList endActions;
  ActionList propertyActions;
  ActionList blockActions;
  std::list<fl::ustring> messages;
  // Whether the whole block is deleted.
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

// Whether the property is abstract in any class; adds a message if so.
bool reportAbstractProperty(const Property& property, BlockUpdate& update) {
  if (!property.isAbstract()) return false;
  update.messages.push_back(findingText("CustomAttributeAbstractBaseClass", {property.getName()}));
  return true;
}

}  // namespace
}  // namespace soca
