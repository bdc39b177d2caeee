// The update of one properties block. Included only by CustomAttributeDeprecationFactory.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "diagnostics/Findings.h"
#include "model/PropertiesBlock.h"
#include "model/Property.h"
#include "rules/FindingPlaces.h"
#include "rules/RuleFinding.h"

namespace soca {
namespace {

// The change of a deprecated attribute of a block.
enum class AttributeStateType {
  // The block does not have the attribute, or keeps it.
  stays,
  // The attribute is removed. It was `false`, so the properties do not change.
  goes,
  // The attribute is removed, and the declarations of the properties replace it.
  isTakenOver,
};

// The number of deprecated attributes.
constexpr std::size_t attributeCount = 2;

// The edits and findings for one properties block.
struct BlockUpdate {
  const PropertiesBlock* block;
  // The logical attributes of the block after the update.
  std::uint64_t attributeMask;
  std::uint64_t remainingProperties;
  // Indexed like the table of attribute rules.
  std::array<AttributeStateType, attributeCount> attributes{};
  // The indices of the conversions of the attributes. For a block without properties, the first is
  // the index of the conversion of the block.
  std::array<std::size_t, attributeCount> conversions{};
  // The range of the sets of this block in the list of all convertible sets.
  std::size_t firstSet = 0;
  std::size_t endOfSets = 0;
  std::vector<RuleFinding> findings;
  // Whether a set is converted or a companion is deleted in the block.
  bool changesProperties = false;
  // The whole block is deleted; its opening is deleted; its `end` is deleted.
  bool isDeleted = false;
  bool losesOpening = false;
  bool losesEnd = false;
  // The block with which this one is joined, if it loses its opening, or its end, and the index of
  // the run of joined blocks.
  const BlockUpdate* previous = nullptr;
  const BlockUpdate* next = nullptr;
  std::size_t run = 0;
  // A conversion of the whole block is not made, so the block, if it stays, is not joined with
  // another.
  bool staysApart = false;

  explicit BlockUpdate(const PropertiesBlock& propertiesBlock)
      : block(&propertiesBlock),
        attributeMask(propertiesBlock.getLogicalAttributes()),
        remainingProperties(propertiesBlock.getNumberOfProperties()) {}

  bool hasActions() const {
    return isDeleted || losesOpening || losesEnd || changesProperties || losesAttribute();
  }

  bool losesAttribute() const { return attributes != decltype(attributes){}; }
};

// Blocks that become one.
struct JoinedRun {
  const BlockUpdate* first;
  const BlockUpdate* last;
};

RuleFinding makeFinding(const char* id, ConversionKindType kind, const Property& property) {
  return {.message = makeMessage(id, {property.getName()}),
          .kind = kind,
          .member = &property.getNode(),
          .memberName = property.getNode().name};
}

// Whether the property is abstract in any class; adds a finding if so.
bool reportAbstractProperty(const Property& property, ConversionKindType kind,
                            BlockUpdate& update) {
  if (!property.isAbstract()) return false;
  RuleFinding finding = makeFinding("CustomAttributeAbstractBaseClass", kind, property);
  finding.findPlaces = findAbstractAttributes;
  update.findings.push_back(std::move(finding));
  return true;
}

}  // namespace
}  // namespace soca
