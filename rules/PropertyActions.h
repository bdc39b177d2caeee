// Edits of a property's declaration and of a block's attribute list. Included only by
// CustomAttributeDeprecationFactory.cpp.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "model/AttributeText.h"
#include "model/Extent.h"
#include "model/PropertiesBlock.h"
#include "model/Property.h"
#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {
namespace {

// The place of a default value. Validation syntax without a default value has no such place: the
// extent is then that of the syntax, and the edit deletes it.
Extent initializerExtent(const Property& property) {
  if (!property.hasDefaultValue()) return property.getValidationExtent();
  const SourcePosition end = property.getValidatorsExtent().end;
  return {end, end};
}

// Does not escape the value.
fl::ustring inQuotes(const fl::ustring& value, bool isString) {
  const char16_t quote = isString ? u'"' : u'\'';
  return quote + value + quote;
}

// Writes the class of a property, in place of an existing one.
class ClassValidation : public SingleAction {
 public:
  ClassValidation(const Property* property, fl::ustring className)
      : property_(property), className_(std::move(className)) {}

  Extent getExtent() const override { return property_->getClassExtent(); }
  fl::ustring getText() const override {
    return property_->hasClass() ? className_ : u" " + className_;
  }

 private:
  const Property* property_;
  fl::ustring className_;
};

// Writes the size of a property, in place of an existing one: one row, and `size` as the second
// dimension.
class SizeValidation : public SingleAction {
 public:
  SizeValidation(const Property* property, fl::ustring size)
      : property_(property), size_(std::move(size)) {}

  Extent getExtent() const override { return property_->getSizeExtent(); }
  fl::ustring getText() const override {
    return (property_->hasSize() ? u"(1, " : u" (1, ") + size_ + u")";
  }

 private:
  const Property* property_;
  fl::ustring size_;
};

// Gives a property without a default value the smallest positive integer.
class PositiveIntegerInitializer : public SingleAction {
 public:
  explicit PositiveIntegerInitializer(const Property* property) : property_(property) {}

  Extent getExtent() const override { return initializerExtent(*property_); }
  fl::ustring getText() const override { return property_->hasDefaultValue() ? u"" : u" = 1"; }

 private:
  const Property* property_;
};

// Adds the `validators` that the property does not have yet.
class AddValidators : public SingleAction {
 public:
  AddValidators(const Property* property, std::vector<fl::ustring> validators)
      : property_(property), validators_(std::move(validators)) {}

  // Before the closing brace, or at the place of missing braces. Empty braces are treated as
  // missing.
  Extent getExtent() const override {
    const Extent extent = property_->getValidatorsExtent();
    if (!property_->hasValidators()) return extent;
    const SourcePosition closingBrace{extent.end.line, extent.end.column - 1};
    return {closingBrace, closingBrace};
  }

  fl::ustring getText() const override {
    const bool hasBraces = property_->hasValidatorBraces();
    return hasBraces ? listText() : u" {" + listText() + u"}";
  }

 private:
  fl::ustring listText() const {
    fl::ustring text;
    bool first = property_->getNumberOfValidators() == 0;
    for (const fl::ustring& name : validators_) {
      if (property_->hasValidator(name)) continue;
      text += first ? name : u", " + name;
      first = false;
    }
    return text;
  }

  const Property* property_;
  std::vector<fl::ustring> validators_;
};

// Replaces the attribute list of a block by one without the attribute:
//
//   (Access=private, Logical, ~Hidden)   ->   (Access = private, ~Hidden)
class RemoveLogicalAttributeAction : public SingleAction {
 public:
  RemoveLogicalAttributeAction(PropertyAttributeType attribute, const PropertiesBlock* block)
      : attribute_(attribute), block_(block) {}

  Extent getExtent() const override { return block_->getAttributesExtent(); }

  fl::ustring getText() const override {
    const fl::ustring removed = propertyAttributeName(attribute_);
    fl::ustring text;
    for (const AttributeText& attribute : block_->getAttributes()) {
      if (attribute.name == removed) continue;
      text += text.empty() ? u"(" : u", ";
      if (attribute.negated) text += u"~";
      text += attribute.name;
      if (attribute.value) text += u" = " + *attribute.value;
    }
    return text.empty() ? text : text + u")";
  }

 private:
  PropertyAttributeType attribute_;
  const PropertiesBlock* block_;
};

// Gives a property without a default value the first member of its set. A dependent property needs
// no default value.
class MustBeMemberInitializer : public SingleAction {
 public:
  MustBeMemberInitializer(const Property* property, fl::ustring firstValue, bool isString)
      : property_(property), firstValue_(std::move(firstValue)), isString_(isString) {}

  Extent getExtent() const override { return initializerExtent(*property_); }
  fl::ustring getText() const override {
    if (property_->hasDefaultValue() || property_->isDependent()) return u"";
    return u" = " + inQuotes(firstValue_, isString_);
  }

 private:
  const Property* property_;
  fl::ustring firstValue_;
  bool isString_;
};

}  // namespace
}  // namespace soca
