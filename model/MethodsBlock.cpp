#include "model/MethodsBlock.h"

#include <algorithm>
#include <array>
#include <utility>

#include "model/AnalyzerPositions.h"
#include "model/BlockParts.h"

namespace soca {
namespace {

constexpr fl::ustring_view keyword = u"methods";

// In the order of MethodAttributeType.
constexpr std::array<fl::ustring_view, 5> attributeNames = {u"Abstract", u"Hidden", u"Sealed",
                                                            u"Static", u"Access"};

// In the order of MethodAccessType.
constexpr std::array<fl::ustring_view, 3> accessLevels = {u"public", u"protected", u"private"};

constexpr fl::ustring_view nameOf(MethodAttributeType attribute) {
  return attributeNames[static_cast<std::size_t>(attribute)];
}

}  // namespace

fl::ustring methodAttributeName(MethodAttributeType attribute) {
  return fl::ustring(nameOf(attribute));
}

MethodsBlock::MethodsBlock(const ca::astapi::MethodsBlockNode* node, const ClassContext* context)
    : node_(node), context_(context) {
  methods_.reserve(node->members.size());
  for (const ca::astapi::Node* member : node->members) {
    methods_.emplace_back(static_cast<const ca::astapi::FunctionDeclaration*>(member), this,
                          context);
  }
  for (const ca::astapi::Attribute* attribute : node->attributes) readAttribute(*attribute);
}

MethodsBlock::MethodsBlock(MethodsBlock&& other) noexcept
    : node_(other.node_),
      context_(other.context_),
      logicalAttributes_(other.logicalAttributes_),
      access_(other.access_),
      methods_(std::move(other.methods_)) {
  adoptMethods();
}

MethodsBlock& MethodsBlock::operator=(MethodsBlock&& other) noexcept {
  node_ = other.node_;
  context_ = other.context_;
  logicalAttributes_ = other.logicalAttributes_;
  access_ = other.access_;
  methods_ = std::move(other.methods_);
  adoptMethods();
  return *this;
}

void MethodsBlock::adoptMethods() {
  for (Method& method : methods_) method.block_ = this;
}

void MethodsBlock::readAttribute(const ca::astapi::Attribute& attribute) {
  // The language has more attributes than these; the others are ignored.
  const auto index = blockParts::indexOfAttribute(attribute, attributeNames);
  if (!index || blockParts::readLogicalValue(attribute, *index, logicalAttributes_)) return;
  const auto type = static_cast<MethodAttributeType>(*index);
  if (type != MethodAttributeType::Access || attribute.value == nullptr) return;
  access_ = static_cast<MethodAccessType>(blockParts::accessLevel(attribute, accessLevels));
}

const Method* MethodsBlock::findMethod(const fl::ustring& name) const {
  const auto found = std::ranges::find(methods_, fl::ustring_view(name), &Method::nameView);
  return found != methods_.end() ? &*found : nullptr;
}

std::vector<AttributeText> MethodsBlock::getAttributes() const {
  return blockParts::attributeTexts(*context_->analysis, *node_);
}

bool MethodsBlock::hasLogicalAttribute(MethodAttributeType attribute) const {
  return blockParts::hasLogicalAttribute(*node_, nameOf(attribute));
}

bool MethodsBlock::hasLogicalAttributeValue(MethodAttributeType attribute, bool value) const {
  return blockParts::hasLogicalAttributeValue(*node_, nameOf(attribute), value);
}

Extent MethodsBlock::getFullExtent() const { return makeExtentOfNode(*context_->analysis, *node_); }

Extent MethodsBlock::getOpeningExtent() const {
  return blockParts::openingExtent(*context_->analysis, *node_, keyword);
}

Extent MethodsBlock::getAttributesExtent() const {
  return blockParts::attributesExtent(*context_->analysis, *node_, keyword);
}

Extent MethodsBlock::getClosingExtent() const {
  return blockParts::closingExtent(*context_->analysis, *node_);
}

}  // namespace soca
