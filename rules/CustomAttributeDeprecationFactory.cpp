#include "rules/CustomAttributeDeprecationFactory.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

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

std::unique_ptr<Action> makePositiveIntegerActions(const Property& property) {
  ActionList actions;
  actions.push_back(std::make_unique<PositiveIntegerInitializer>(&property));
  actions.push_back(std::make_unique<AddValidators>(
      &property, std::vector<fl::ustring>{u"mustBePositive", u"mustBeInteger"}));
  actions.push_back(std::make_unique<SizeValidation>(&property, u"1"));
  return std::make_unique<ActionGroup>(std::move(actions));
}

std::unique_ptr<Action> makeLogicalActions(const Property& property) {
  ActionList actions;
  actions.push_back(std::make_unique<ClassValidation>(&property, u"logical"));
  actions.push_back(std::make_unique<SizeValidation>(&property, u"1"));
  return std::make_unique<ActionGroup>(std::move(actions));
}

struct AttributeRule {
  PropertyAttributeType attribute;
  ConversionKindType kind;
  // Makes the edits of one property, as a group.
  std::unique_ptr<Action> (*makeActions)(const Property&);

  std::uint64_t bit() const { return std::uint64_t{1} << static_cast<std::uint32_t>(attribute); }
};

// In the order in which they are applied.
constexpr std::array<AttributeRule, attributeCount> attributeRules = {{
    {PropertyAttributeType::PositiveInteger, ConversionKindType::positiveInteger,
     makePositiveIntegerActions},
    {PropertyAttributeType::Logical, ConversionKindType::logical, makeLogicalActions},
}};

// Whether the property prevents the conversion of its block; adds a finding if so.
bool reportUnconvertibleProperty(const Property& property, ConversionKindType kind,
                                 BlockUpdate& update) {
  if (reportAbstractProperty(property, kind, update)) return true;
  if (property.hasDefaultValue()) return false;
  update.findings.push_back(makeFinding("PropertyHasEmptyDefault", kind, property));
  return true;
}

bool areAlike(const BlockUpdate& left, const BlockUpdate& right) {
  return left.attributeMask == right.attributeMask &&
         left.block->getAccess() == right.block->getAccess();
}

// The companions of the convertible sets, by name.
class Companions {
 public:
  // Links the sets with companions of the same name. `sets` must outlive this object, and its size
  // must not change.
  explicit Companions(std::vector<ConvertibleSet>* sets) : sets_(*sets) {
    for (std::size_t i = 0; i < sets_.size(); ++i) {
      const auto [chain, isNew] = chains_.try_emplace(sets_[i].companion->nameView(), Chain{i, i});
      if (isNew) continue;
      sets_[chain->second.last].nextOfCompanion = i;
      chain->second.last = i;
    }
  }

  bool empty() const { return sets_.empty(); }
  bool contains(const Property& property) const { return chains_.contains(property.nameView()); }

  // Determines the companions to delete. Requires the sets to know whether they are converted.
  void settle() {
    for (auto& [name, chain] : chains_) {
      visitSets(chain, [&](const ConvertibleSet& set) { chain.isFreed &= set.isMade; });
    }
  }

  // Whether all conversions that use the companion are made. False for other properties.
  bool isFreed(const Property& property) const {
    const auto chain = chains_.find(property.nameView());
    return chain != chains_.end() && chain->second.isFreed;
  }

  template <class Visit>
  void visitSetsOf(const Property& companion, const Visit& visit) const {
    visitSets(chains_.at(companion.nameView()), visit);
  }

 private:
  struct Chain {
    std::size_t first;
    std::size_t last;
    bool isFreed = true;
  };

  template <class Visit>
  void visitSets(const Chain& chain, const Visit& visit) const {
    std::size_t next = chain.first;
    do {
      visit(sets_[next]);
      next = sets_[next].nextOfCompanion;
    } while (next != 0);
  }

  std::vector<ConvertibleSet>& sets_;
  std::unordered_map<fl::ustring_view, Chain> chains_;
};

// Applies the rules to one class: finds the conversions, determines the changes of the blocks from
// those that are made, and makes the edits.
class BlockRules {
 public:
  BlockRules(const AnalyzedClass* analyzedClass, const ConversionChoice* choice)
      : analyzedClass_(*analyzedClass),
        definition_(*analyzedClass->definition),
        choice_(*choice),
        updates_(definition_.getPropertiesBlocks().begin(),
                 definition_.getPropertiesBlocks().end()) {}

  RuleResult run() {
    for (std::size_t i = 0; i < attributeRules.size(); ++i) {
      for (BlockUpdate& update : updates_) findAttribute(i, update);
    }
    findSets();
    companions_.emplace(&sets_);
    for (BlockUpdate& update : updates_) addConversions(update);
    companions_->settle();
    for (BlockUpdate& update : updates_) deleteProperties(update);
    joinNeighbours();
    for (BlockUpdate& update : updates_) addActions(update);
    return std::move(result_);
  }

 private:
  // A block is converted completely or not at all: the first property that prevents it drops the
  // change of the attribute, and of an earlier one.
  void findAttribute(std::size_t index, BlockUpdate& update) {
    const AttributeRule& rule = attributeRules[index];
    const PropertiesBlock& block = *update.block;
    if (!block.hasLogicalAttribute(rule.attribute)) return;
    update.attributeMask &= ~rule.bit();
    update.attributes[index] = AttributeStateType::goes;
    if (block.hasLogicalAttributeValue(rule.attribute, false)) return;
    update.attributes[index] = AttributeStateType::isTakenOver;
    for (const Property& property : block.getProperties()) {
      if (!reportUnconvertibleProperty(property, rule.kind, update)) continue;
      update.attributes = {};
      update.attributeMask |= rule.bit();
      return;
    }
  }

  void findSets() {
    CompanionUses uses(&definition_, analyzedClass_.sourceTextView());
    const bool needsNames = std::ranges::any_of(updates_, &BlockUpdate::losesAttribute);
    for (BlockUpdate& update : updates_) {
      update.firstSet = sets_.size();
      for (const Property& property : update.block->getProperties()) {
        ConstrainedSetInfo info = property.getConstrainedSetInfo();
        if (info.kind != 0 && needsNames) companionNames_.insert(info.setPropertyName);
        auto set = findConvertibleSet(definition_, property, std::move(info), uses, update);
        if (set) sets_.push_back(std::move(*set));
      }
      update.endOfSets = sets_.size();
    }
  }

  // --- the conversions ---

  void addConversions(BlockUpdate& update) {
    if (update.remainingProperties == 0) {
      addEmptyBlock(update);
    } else if (update.losesAttribute()) {
      addAttributes(update);
    }
    for (std::size_t i = update.firstSet; i < update.endOfSets; ++i) addSet(sets_[i], update);
  }

  void addEmptyBlock(BlockUpdate& update) {
    update.attributes = {};
    update.conversions[0] = result_.addConversion(
        {.kind = ConversionKindType::emptyBlock, .block = &update.block->getNode()});
    update.isDeleted = choice_.isMade(update.conversions[0]);
    update.staysApart = !update.isDeleted;
  }

  void addAttributes(BlockUpdate& update) {
    const Property* named = findNamedProperty(update);
    for (std::size_t i = 0; i < attributeRules.size(); ++i) {
      if (update.attributes[i] == AttributeStateType::stays) continue;
      if (named != nullptr) {
        update.conversions[i] = result_.addConversion(
            {.kind = attributeRules[i].kind,
             .block = &update.block->getNode(),
             .property = &named->getNode(),
             .isTakenOver = update.attributes[i] == AttributeStateType::isTakenOver});
        if (choice_.isMade(update.conversions[i])) continue;
        update.staysApart = true;
      }
      keepAttribute(i, update);
    }
  }

  // The property that names the conversions of the block: the first that is not a companion of any
  // set, otherwise the first that stays. Null if the whole block is to be deleted with its
  // companions.
  const Property* findNamedProperty(const BlockUpdate& update) const {
    const auto& properties = update.block->getProperties();
    const auto stays = [&](const Property& property) { return !companions_->contains(property); };
    auto named = std::ranges::find_if(properties, [&](const Property& property) {
      return stays(property) && !companionNames_.contains(property.getName());
    });
    if (named == properties.end()) named = std::ranges::find_if(properties, stays);
    return named == properties.end() ? nullptr : &*named;
  }

  static void keepAttribute(std::size_t index, BlockUpdate& update) {
    update.attributes[index] = AttributeStateType::stays;
    update.attributeMask |= update.block->getLogicalAttributes() & attributeRules[index].bit();
  }

  void addSet(ConvertibleSet& set, BlockUpdate& update) {
    set.conversion = result_.addConversion({.kind = ConversionKindType::stringSet,
                                            .property = &set.property->getNode(),
                                            .companion = &set.companion->getNode()});
    set.isMade = choice_.isMade(set.conversion);
    if (set.isMade) update.changesProperties = true;
  }

  // --- the blocks ---

  // Counts the deleted companions. A block without remaining properties is deleted. If it stays
  // only because some conversions are not made, it stays as it is: all conversions do not join it,
  // so joining could give an opening that is in neither text, and its attributes count for its own
  // properties only.
  void deleteProperties(BlockUpdate& update) {
    if (companions_->empty() || update.remainingProperties == 0) return;
    update.staysApart |= findNamedProperty(update) == nullptr;
    for (const Property& property : update.block->getProperties()) {
      if (!companions_->isFreed(property)) continue;
      --update.remainingProperties;
      update.changesProperties = true;
    }
    update.isDeleted = update.remainingProperties == 0;
  }

  // Joins each block with the previous one if both will have equal attributes and access, and at
  // least one of them has edits. Deleted blocks between them are ignored; blocks of other keywords
  // separate them.
  void joinNeighbours() {
    BlockUpdate* previous = nullptr;
    bool previousChanged = false;
    auto next = updates_.begin();
    for (const ClassMember& member : definition_.getMembers()) {
      if (member.propertiesBlock == nullptr) {
        previous = nullptr;
        continue;
      }
      BlockUpdate& update = *next++;
      if (update.isDeleted) continue;
      if (previous != nullptr && !update.staysApart && (previousChanged || update.hasActions()) &&
          areAlike(*previous, update)) {
        join(*previous, update);
      }
      previous = update.staysApart ? nullptr : &update;
      previousChanged = update.hasActions();
    }
  }

  void join(BlockUpdate& previous, BlockUpdate& update) {
    if (!previous.losesOpening) {
      previous.run = runs_.size();
      runs_.push_back({&previous, &previous});
    }
    previous.losesEnd = true;
    previous.next = &update;
    update.losesOpening = true;
    update.previous = &previous;
    update.run = previous.run;
    runs_[update.run].last = &update;
  }

  // --- the edits ---

  void addActions(BlockUpdate& update) {
    std::ranges::move(update.findings, std::back_inserter(result_.findings));
    if (update.isDeleted) {
      result_.addAction(std::make_unique<DeleteBlock>(update.block, u"", 0),
                        conversionsOf(update, update));
    } else if (update.hasActions()) {
      addOpeningActions(update);
      if (update.losesEnd) {
        result_.addAction(std::make_unique<DeleteEnd>(update.block, u"", 0),
                          conversionsOfJoin(update, *update.next));
      }
      addAttributeActions(update);
      if (update.changesProperties) addPropertyActions(update);
    }
  }

  // Deleting the opening replaces all other edits of it.
  void addOpeningActions(const BlockUpdate& update) {
    if (update.losesOpening) {
      result_.addAction(std::make_unique<DeleteOpening>(update.block, u"", 0),
                        conversionsOfJoin(*update.previous, update));
      return;
    }
    for (std::size_t i = 0; i < attributeRules.size(); ++i) {
      if (update.attributes[i] == AttributeStateType::stays) continue;
      result_.addAction(
          std::make_unique<RemoveLogicalAttributeAction>(attributeRules[i].attribute, update.block),
          update.conversions[i]);
    }
  }

  void addAttributeActions(const BlockUpdate& update) {
    for (std::size_t i = 0; i < attributeRules.size(); ++i) {
      if (update.attributes[i] != AttributeStateType::isTakenOver) continue;
      for (const Property& property : update.block->getProperties()) {
        result_.addAction(attributeRules[i].makeActions(property), update.conversions[i]);
      }
    }
  }

  void addPropertyActions(const BlockUpdate& update) {
    for (std::size_t i = update.firstSet; i < update.endOfSets; ++i) {
      const ConvertibleSet& set = sets_[i];
      if (!set.isMade) continue;
      result_.addAction(std::make_unique<ActionGroup>(makeMemberActions(*set.property, set.set)),
                        set.conversion);
    }
    for (const Property& property : update.block->getProperties()) {
      if (!companions_->isFreed(property)) continue;
      std::vector<std::size_t> conversions;
      addSetsOf(property, conversions);
      result_.addAction(
          std::make_unique<DeleteProperty>(&property, u"", SourceFile::ConsumeListDelimiter),
          std::move(conversions));
    }
  }

  // --- the conversions of an edit ---

  void addSetsOf(const Property& companion, std::vector<std::size_t>& conversions) const {
    companions_->visitSetsOf(
        companion, [&](const ConvertibleSet& set) { conversions.push_back(set.conversion); });
  }

  // Those made that change one of the blocks from `first` to `last`.
  std::vector<std::size_t> conversionsOf(const BlockUpdate& first, const BlockUpdate& last) const {
    std::vector<std::size_t> conversions;
    for (const BlockUpdate* update = &first; update <= &last; ++update) {
      addConversionsOf(*update, conversions);
    }
    return conversions;
  }

  // Any change of a block joins it with its neighbours, these with theirs, and so on. So with
  // several conversions in a run, an edit may result from each of them; only those of the two
  // blocks are listed and two others, because the lists would grow with the square of the run.
  std::vector<std::size_t> conversionsOfJoin(const BlockUpdate& first, const BlockUpdate& last) {
    const std::vector<std::size_t>& all = conversionsOfRun(first.run);
    if (all.size() == 1) return all;
    std::vector<std::size_t> conversions = conversionsOf(first, last);
    conversions.push_back(all.front());
    conversions.push_back(all.back());
    return conversions;
  }

  // Computed when the first edit of the run is made.
  const std::vector<std::size_t>& conversionsOfRun(std::size_t run) {
    if (run != currentRun_) {
      currentRun_ = run;
      conversionsOfRun_ = conversionsOf(*runs_[run].first, *runs_[run].last);
      std::ranges::sort(conversionsOfRun_);
      const auto same = std::ranges::unique(conversionsOfRun_);
      conversionsOfRun_.erase(same.begin(), same.end());
    }
    return conversionsOfRun_;
  }

  void addConversionsOf(const BlockUpdate& update, std::vector<std::size_t>& conversions) const {
    if (update.isDeleted && update.block->getNumberOfProperties() == 0) {
      conversions.push_back(update.conversions[0]);
    }
    for (std::size_t i = 0; i < attributeRules.size(); ++i) {
      if (update.attributes[i] == AttributeStateType::stays) continue;
      conversions.push_back(update.conversions[i]);
    }
    for (std::size_t i = update.firstSet; i < update.endOfSets; ++i) {
      if (sets_[i].isMade) conversions.push_back(sets_[i].conversion);
    }
    for (const Property& property : update.block->getProperties()) {
      if (companions_->isFreed(property)) addSetsOf(property, conversions);
    }
  }

  const AnalyzedClass& analyzedClass_;
  const ClassDefinition& definition_;
  const ConversionChoice& choice_;
  // In the order of the file.
  std::vector<BlockUpdate> updates_;
  std::vector<ConvertibleSet> sets_;
  // The companions of all sets, convertible or not. Filled only if the name of a conversion depends
  // on it.
  std::unordered_set<fl::ustring> companionNames_;
  std::optional<Companions> companions_;
  std::vector<JoinedRun> runs_;
  std::vector<std::size_t> conversionsOfRun_;
  std::size_t currentRun_ = noConversion;
  RuleResult result_;
};

}  // namespace

std::unique_ptr<AbstractActionFactory> makeCustomAttributeDeprecationFactory(
    MetaDataInterface* /*metaData*/) {
  return std::make_unique<CustomAttributeDeprecationFactory>();
}

RuleResult CustomAttributeDeprecationFactory::createActions(const AnalyzedClass& analyzedClass,
                                                            const ConversionChoice& choice) const {
  return BlockRules(&analyzedClass, &choice).run();
}

}  // namespace soca
