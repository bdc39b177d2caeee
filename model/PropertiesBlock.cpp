#include "model/PropertiesBlock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "model/AnalyzerPositions.h"
#include "model/BlockParts.h"

namespace soca {
namespace {

constexpr fl::ustring_view keyword = u"properties";

// In the order of PropertyAttributeType.
constexpr std::array<fl::ustring_view, 23> attributeNames = {
    u"AbortSet",
    u"Abstract",
    u"Constant",
    u"Dependent",
    u"GetObservable",
    u"Hidden",
    u"NonCopyable",
    u"SetObservable",
    u"Transient",
    u"PositiveInteger",
    u"Logical",
    u"Nontunable",
    u"DiscreteState",
    u"ContinuousState",
    u"ConstrainedSet",
    u"EnumerationUsingMessageCatalog",
    u"EnumerationUsingDisplayStrings",
    u"DynamicEnumeration",
    u"PropertyPortPolicy",
    u"ControlledDynamicEnumerations",
    u"Access",
    u"GetAccess",
    u"SetAccess",
};

// In the order of PropertyAccessType.
constexpr std::array<fl::ustring_view, 4> accessLevels = {u"public", u"protected", u"private",
                                                          u"immutable"};

constexpr fl::ustring_view nameOf(PropertyAttributeType attribute) {
  return attributeNames[static_cast<std::size_t>(attribute)];
}

}  // namespace

fl::ustring propertyAttributeName(PropertyAttributeType attribute) {
  return fl::ustring(nameOf(attribute));
}

PropertiesBlock::PropertiesBlock(const ca::astapi::PropertiesBlockNode* node,
                                 const ClassContext* context)
    : node_(node), context_(context) {
  properties_.reserve(node->members.size());
  for (const ca::astapi::Node* member : node->members) {
    properties_.emplace_back(static_cast<const ca::astapi::PropertyNode*>(member), this, context);
  }
  for (const ca::astapi::Attribute* attribute : node->attributes) readAttribute(*attribute);
}

PropertiesBlock::PropertiesBlock(PropertiesBlock&& other) noexcept
    : node_(other.node_),
      context_(other.context_),
      logicalAttributes_(other.logicalAttributes_),
      access_(other.access_),
      properties_(std::move(other.properties_)) {
  adoptProperties();
}

PropertiesBlock& PropertiesBlock::operator=(PropertiesBlock&& other) noexcept {
  node_ = other.node_;
  context_ = other.context_;
  logicalAttributes_ = other.logicalAttributes_;
  access_ = other.access_;
  properties_ = std::move(other.properties_);
  adoptProperties();
  return *this;
}

void PropertiesBlock::adoptProperties() {
  for (Property& property : properties_) property.block_ = this;
}

void PropertiesBlock::readAttribute(const ca::astapi::Attribute& attribute) {
  // The language has more attributes than these; the others are ignored.
  const auto index = blockParts::indexOfAttribute(attribute, attributeNames);
  if (!index || blockParts::readLogicalValue(attribute, *index, logicalAttributes_)) return;
  const auto type = static_cast<PropertyAttributeType>(*index);
  if (type < PropertyAttributeType::Access || attribute.value == nullptr) return;
  const auto level =
      static_cast<PropertyAccessType>(blockParts::accessLevel(attribute, accessLevels));
  if (type != PropertyAttributeType::SetAccess) access_.getAccess = level;
  if (type != PropertyAttributeType::GetAccess) access_.setAccess = level;
}

const Property* PropertiesBlock::findProperty(const fl::ustring& name) const {
  const auto found = std::ranges::find(properties_, fl::ustring_view(name), &Property::nameView);
  return found != properties_.end() ? &*found : nullptr;
}

std::vector<AttributeText> PropertiesBlock::getAttributes() const {
  return blockParts::attributeTexts(*context_->analysis, *node_);
}

bool PropertiesBlock::hasLogicalAttribute(PropertyAttributeType attribute) const {
  return blockParts::hasLogicalAttribute(*node_, nameOf(attribute));
}

bool PropertiesBlock::hasLogicalAttributeValue(PropertyAttributeType attribute, bool value) const {
  return blockParts::hasLogicalAttributeValue(*node_, nameOf(attribute), value);
}

Extent PropertiesBlock::getFullExtent() const {
  return makeExtentOfNode(*context_->analysis, *node_);
}

Extent PropertiesBlock::getOpeningExtent() const {
  return blockParts::openingExtent(*context_->analysis, *node_, keyword);
}

Extent PropertiesBlock::getAttributesExtent() const {
  return blockParts::attributesExtent(*context_->analysis, *node_, keyword);
}

Extent PropertiesBlock::getClosingExtent() const {
  return blockParts::closingExtent(*context_->analysis, *node_);
}

}  // namespace soca
