#include "rules/CustomAttributeDeprecationFactory.h"

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include "diagnostics/Findings.h"
#include "model/AnalyzedClass.h"
#include "model/ClassDefinition.h"
#include "model/PropertiesBlock.h"
#include "model/Property.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "rules/PropertiesBlockUpdate.h"
#include "rules/PropertyActions.h"
#include "rules/ReplaceEntity.h"
#include "rules/RuleFamilies.h"
#include "rules/StringSetConversion.h"

namespace soca {
namespace {

// The keyword `properties` and the attribute list, if it has an attribute.
struct GetOpeningExtent {
  Extent operator()(const PropertiesBlock& block) const { return block.getOpeningExtent(); }
};

// The `end` keyword.
struct GetEndExtent {
  Extent operator()(const PropertiesBlock& block) const { return block.getClosingExtent(); }
};

using DeleteProperty = ReplaceEntity<Property, GetExtent<Property>>;
using DeleteBlock = ReplaceEntity<PropertiesBlock, GetExtent<PropertiesBlock>>;
using DeleteOpening = ReplaceEntity<PropertiesBlock, GetOpeningExtent>;
using DeleteEnd = ReplaceEntity<PropertiesBlock, GetEndExtent>;

// Adds the edits of one property to the update of its block.
using MakePropertyActions = void (*)(const Property&, BlockUpdate&);

void makePositiveIntegerActions(const Property& property, BlockUpdate& update) {
  ActionList actions;
  actions.push_back(std::make_unique<PositiveIntegerInitializer>(&property));
  actions.push_back(std::make_unique<AddValidators>(
      &property, std::vector<fl::ustring>{u"mustBePositive", u"mustBeInteger"}));
  actions.push_back(std::make_unique<SizeValidation>(&property, u"1"));
  update.addGroup(std::move(actions));
}

void makeLogicalActions(const Property& property, BlockUpdate& update) {
  ActionList actions;
  actions.push_back(std::make_unique<ClassValidation>(&property, u"logical"));
  actions.push_back(std::make_unique<SizeValidation>(&property, u"1"));
  update.addGroup(std::move(actions));
}

// Whether the property prevents the conversion of its block; adds a message if so.
bool reportUnconvertibleProperty(const Property& property, BlockUpdate& update) {
  if (reportAbstractProperty(property, update)) return true;
  if (property.hasDefaultValue()) return false;
  update.messages.push_back(findingText("PropertyHasEmptyDefault", {property.getName()}));
  return true;
}

// A block is converted completely or not at all: the first property that prevents it drops all
// edits of the block, including those for an earlier attribute.
void applyAttributeRule(BlockUpdate& update, PropertyAttributeType attribute,
                        MakePropertyActions makePropertyActions) {
  const PropertiesBlock& block = *update.block;
  if (!block.hasLogicalAttribute(attribute)) return;
  const std::uint64_t bit = std::uint64_t{1} << static_cast<std::uint32_t>(attribute);
  update.attributeMask &= ~bit;
  update.attributeActions.push_back(
      std::make_unique<RemoveLogicalAttributeAction>(attribute, &block));
  if (block.hasLogicalAttributeValue(attribute, false)) return;
  for (const Property& property : block.getProperties()) {
    if (reportUnconvertibleProperty(property, update)) {
      update.dropActions();
      update.attributeMask |= bit;
      return;
    }
    makePropertyActions(property, update);
  }
}

void applyAttributeRule(std::vector<BlockUpdate>& updates, PropertyAttributeType attribute,
                        MakePropertyActions makePropertyActions) {
  for (BlockUpdate& update : updates) applyAttributeRule(update, attribute, makePropertyActions);
}

// The names of the companions that are no longer needed, with duplicates.
std::vector<fl::ustring> convertStringSets(const AnalyzedClass& analyzedClass,
                                           std::vector<BlockUpdate>& updates) {
  const ClassDefinition& classDefinition = *analyzedClass.definition;
  CompanionUses uses(&classDefinition, analyzedClass.sourceTextView());
  std::vector<fl::ustring> setProperties;
  for (BlockUpdate& update : updates) {
    for (const Property& property : update.block->getProperties()) {
      convertStringSet(classDefinition, property, uses, update, setProperties);
    }
  }
  return setProperties;
}

void deleteCompanions(std::vector<BlockUpdate>& updates,
                      const std::vector<fl::ustring>& setProperties) {
  const std::unordered_set<fl::ustring_view> names(setProperties.begin(), setProperties.end());
  for (BlockUpdate& update : updates) {
    for (const Property& property : update.block->getProperties()) {
      if (!names.contains(property.nameView())) continue;
      update.propertyActions.push_back(
          std::make_unique<DeleteProperty>(&property, u"", SourceFile::ConsumeListDelimiter));
      --update.remainingProperties;
    }
  }
}

// Includes the blocks that never had a property.
void deleteEmptyBlocks(std::vector<BlockUpdate>& updates) {
  for (BlockUpdate& update : updates) {
    if (update.remainingProperties != 0) continue;
    update.dropActions();
    update.blockActions.push_back(std::make_unique<DeleteBlock>(update.block, u"", 0));
    update.deleted = true;
  }
}

bool areAlike(const BlockUpdate& left, const BlockUpdate& right) {
  return left.attributeMask == right.attributeMask &&
         left.block->getAccess() == right.block->getAccess();
}

// Deletes the `end` of the first block and the opening of the second. Deleting the opening replaces
// all other edits of it.
void join(BlockUpdate& first, BlockUpdate& second) {
  first.endActions.push_back(std::make_unique<DeleteEnd>(first.block, u"", 0));
  second.attributeActions.clear();
  second.attributeActions.push_back(std::make_unique<DeleteOpening>(second.block, u"", 0));
}

// Joins each block with the previous one if both will have equal attributes and access, and at
// least one of them has edits. Deleted blocks between them are ignored; blocks of other keywords
// separate them.
void joinNeighbours(const ClassDefinition& classDefinition, std::vector<BlockUpdate>& updates) {
  std::map<const PropertiesBlock*, BlockUpdate*> updateOf;
  for (BlockUpdate& update : updates) updateOf.emplace(update.block, &update);
  BlockUpdate* previous = nullptr;
  bool previousChanged = false;
  for (const ClassMember& member : classDefinition.getMembers()) {
    if (member.propertiesBlock == nullptr) {
      previous = nullptr;
      continue;
    }
    BlockUpdate& update = *updateOf.at(member.propertiesBlock);
    if (update.deleted) continue;
    if (previous != nullptr && (previousChanged || update.hasActions()) &&
        areAlike(*previous, update)) {
      join(*previous, update);
    }
    previous = &update;
    previousChanged = update.hasActions();
  }
}

RuleResult takeResult(std::vector<BlockUpdate>& updates) {
  RuleResult result;
  for (BlockUpdate& update : updates) {
    result.actions.splice(result.actions.end(), update.attributeActions);
    result.actions.splice(result.actions.end(), update.endActions);
    result.actions.splice(result.actions.end(), update.propertyActions);
    result.actions.splice(result.actions.end(), update.blockActions);
    result.messages.splice(result.messages.end(), update.messages);
  }
  return result;
}

}  // namespace

std::unique_ptr<AbstractActionFactory> makeCustomAttributeDeprecationFactory(
    MetaDataInterface* /*metaData*/) {
  return std::make_unique<CustomAttributeDeprecationFactory>();
}

RuleResult CustomAttributeDeprecationFactory::createActions(
    const AnalyzedClass& analyzedClass) const {
  const ClassDefinition& classDefinition = *analyzedClass.definition;
  std::vector<BlockUpdate> updates(classDefinition.getPropertiesBlocks().begin(),
                                   classDefinition.getPropertiesBlocks().end());
  applyAttributeRule(updates, PropertyAttributeType::PositiveInteger, makePositiveIntegerActions);
  applyAttributeRule(updates, PropertyAttributeType::Logical, makeLogicalActions);
  const std::vector<fl::ustring> setProperties = convertStringSets(analyzedClass, updates);
  deleteCompanions(updates, setProperties);
  deleteEmptyBlocks(updates);
  joinNeighbours(classDefinition, updates);
  return takeResult(updates);
}

}  // namespace soca
