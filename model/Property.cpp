#include "model/Property.h"

#include <algorithm>

#include "model/AnalyzerPositions.h"
#include "model/DotIndex.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using ca::astapi::Node;
using lf::astapi::NodeKind;

constexpr fl::ustring_view stringSetClass = u"velum.system.StringSet";
constexpr fl::ustring_view getAccessorPrefix = u"get.";

// The name of a validator that is a plain name or a call of one; empty for any other validator.
fl::ustring_view validatorName(const Node* validator) {
  if (validator->kind == NodeKind::CallOrIndex) {
    validator = static_cast<const ca::astapi::CallOrIndex*>(validator)->base;
  }
  if (validator->kind != NodeKind::Identifier) return {};
  return static_cast<const ca::astapi::Identifier*>(validator)->text.view();
}

// Whether the node is a literal that may be part of a set.
bool isSetLiteral(const Node* node) {
  return node->kind == NodeKind::CellLiteral || node->kind == NodeKind::MatrixLiteral ||
         node->kind == NodeKind::StringLiteral;
}

bool isAsciiAlphanumeric(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'a' && unit <= u'z');
}

// Whether the function is the get accessor of the property.
bool isGetAccessor(const ca::astapi::FunctionDeclaration& function, fl::ustring_view propertyName) {
  const fl::ustring_view name = function.name->text.view();
  return name.size() == getAccessorPrefix.size() + propertyName.size() &&
         name.starts_with(getAccessorPrefix) && name.ends_with(propertyName);
}

// Whether the class has a get accessor of that name in a methods block.
bool definesGetAccessor(const ca::astapi::Classdef& classdef, fl::ustring_view propertyName) {
  const auto hasIt = [&](const Node* member) {
    return member->kind == NodeKind::MethodsBlockNode &&
           std::ranges::any_of(static_cast<const ca::astapi::MethodsBlockNode*>(member)->members,
                               [&](const Node* function) {
                                 return isGetAccessor(
                                     static_cast<const ca::astapi::FunctionDeclaration&>(*function),
                                     propertyName);
                               });
  };
  return std::ranges::any_of(classdef.members, hasIt);
}

}  // namespace

ConstrainedSetInfo Property::getConstrainedSetInfo() const {
  return context_->metaClass->getConstrainedSetInfo(getName());
}

bool Property::isAbstract() const { return context_->metaClass->isAbstractInAnyClass(getName()); }

bool Property::isDependent() const { return context_->metaClass->isDependent(getName()); }

bool Property::hasSize() const {
  return node_->validation != nullptr && !node_->validation->size.empty();
}

bool Property::hasClass() const {
  return node_->validation != nullptr && node_->validation->className != nullptr;
}

bool Property::hasValidators() const { return getNumberOfValidators() != 0; }

std::uint64_t Property::getNumberOfValidators() const {
  return node_->validation != nullptr ? node_->validation->validators.size() : 0;
}

bool Property::hasValidatorBraces() const {
  return hasValidators() && node_->validation->validatorBraces.has_value();
}

bool Property::hasValidator(const fl::ustring& name) const {
  if (node_->validation == nullptr) return false;
  const auto& validators = node_->validation->validators;
  return std::any_of(validators.begin(), validators.end(),
                     [&](const Node* validator) { return validatorName(validator) == name; });
}

bool Property::hasStringSetDefault() const {
  const Node* value = node_->defaultValue;
  if (value == nullptr || value->kind != NodeKind::CallOrIndex) return false;
  const auto& call = static_cast<const ca::astapi::CallOrIndex&>(*value);
  // Compares only the beginning, so that a longer name is accepted too.
  if (!context_->analysis->nodeTextView(*call.base).starts_with(stringSetClass)) return false;
  return std::all_of(call.arguments.begin(), call.arguments.end(), isSetLiteral);
}

bool Property::hasGetAccessor() const {
  return definesGetAccessor(*context_->analysis->getClassdef(), nameView());
}

bool Property::isReferencedThroughDot() const {
  // Only the first occurrence counts: `.Mode2` hides a `.Mode` that follows it.
  return isReferencedInFrontOf(fl::findBehindDot(context_->analysis->sourceTextView(), nameView()));
}

bool Property::isReferencedThroughDot(const DotIndex& index) const {
  return isReferencedInFrontOf(index.findBehind(nameView()));
}

bool Property::isReferencedInFrontOf(std::size_t next) const {
  const fl::ustring_view text = context_->analysis->sourceTextView();
  if (next == fl::ustring_view::npos || hasGetAccessor()) return false;
  return next == text.size() || !isAsciiAlphanumeric(text[next]);
}

Extent Property::getFullExtent() const { return makeExtentOfNode(*context_->analysis, *node_); }

Extent Property::getSizeExtent() const {
  if (!hasSize()) return {nameEnd(), nameEnd()};
  return makeExtentFromPair(*context_->analysis, node_->validation->sizeParentheses->packed());
}

Extent Property::getClassExtent() const {
  if (hasClass()) return makeExtentOfNode(*context_->analysis, *node_->validation->className);
  const SourcePosition place = hasSize() ? sizeEnd() : nameEnd();
  return {place, place};
}

Extent Property::getValidatorsExtent() const {
  if (hasValidators()) {
    return makeExtentFromPair(*context_->analysis, node_->validation->validatorBraces->packed());
  }
  const SourcePosition place = validatorsPlace();
  return {place, place};
}

Extent Property::getValidationExtent() const {
  if (hasValidators()) return {nameEnd(), getValidatorsExtent().end};
  if (hasClass()) return {nameEnd(), classEnd()};
  if (hasSize()) return {nameEnd(), sizeEnd()};
  return {nameEnd(), getFullExtent().end};
}

SourcePosition Property::nameEnd() const {
  return makeExtentOfNode(*context_->analysis, *node_->name).end;
}

SourcePosition Property::sizeEnd() const {
  return makePosition(*context_->analysis, node_->validation->sizeParentheses->closing, true);
}

SourcePosition Property::classEnd() const {
  return makeExtentOfNode(*context_->analysis, *node_->validation->className).end;
}

SourcePosition Property::validatorsPlace() const {
  if (hasClass()) return classEnd();
  return hasSize() ? sizeEnd() : nameEnd();
}

}  // namespace soca
