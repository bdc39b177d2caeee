// Converts a companion property that holds a StringSet into a validator. Included only by
// CustomAttributeDeprecationFactory.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "diagnostics/Findings.h"
#include "metadata/MetaClass.h"
#include "model/ClassDefinition.h"
#include "model/DotIndex.h"
#include "model/PropertiesBlock.h"
#include "model/Property.h"
#include "platform/text/UString.h"
#include "rules/PropertiesBlockUpdate.h"
#include "rules/PropertyActions.h"

namespace soca {
namespace {

// How the members of a set are declared.
struct SetForm {
  const char16_t* className;
  // The second dimension of the size.
  const char16_t* size;
  const char16_t* openingBracket;
  const char16_t* closingBracket;
};

constexpr SetForm kStringForm{u"string", u"1", u"[", u"]"};
constexpr SetForm kCharForm{u"char", u":", u"{", u"}"};

bool holdsStrings(const ConstrainedSetInfo& set) { return set.valueType == 2; }

// Whether a validator can replace the set: not for a property without a set, and not for the kinds
// with another meaning.
bool isReplaceableSet(const ConstrainedSetInfo& set) {
  switch (set.kind) {
    case 0:  // none
    case 2:  // StringSetGF
    case 3:  // MessageCatalogSet
    case 4:  // DynamicStringSet
    case 5:  // DataTypeSet
    case 6:  // RoundingMethodSet
      return false;
    default:
      return true;
  }
}

// Finds out whether the source code uses a companion. Searches the text for each of the first few;
// after that, searches it once for all properties of the class.
class CompanionUses {
 public:
  // Both must outlive this object.
  CompanionUses(const ClassDefinition* classDefinition, fl::ustring_view text)
      : classDefinition_(classDefinition), text_(text) {}

  bool isUsed(const Property& companion) {
    if (count_++ < few) return companion.isReferencedThroughDot();
    if (!index_) index_.emplace(text_, propertyNames());
    return companion.isReferencedThroughDot(*index_);
  }

 private:
  static constexpr std::size_t few = 16;

  std::vector<fl::ustring_view> propertyNames() const {
    std::vector<fl::ustring_view> names;
    for (const PropertiesBlock& block : classDefinition_->getPropertiesBlocks()) {
      for (const Property& property : block.getProperties()) names.push_back(property.nameView());
    }
    return names;
  }

  const ClassDefinition* classDefinition_;
  fl::ustring_view text_;
  std::size_t count_ = 0;
  std::optional<DotIndex> index_;
};

// Whether the companion can be deleted; adds a finding for each reason against it.
bool canDeleteCompanion(const Property& property, const Property& companion, CompanionUses& uses,
                        BlockUpdate& update) {
  const auto report = [&](const char* id, PlaceFinder* findPlaces) {
    update.findings.push_back(
        {.message = makeMessage(id, {property.getName(), companion.getName()}),
         .kind = ConversionKindType::stringSet,
         .member = &property.getNode(),
         .memberName = property.getNode().name,
         .other = &companion.getNode(),
         .findPlaces = findPlaces});
  };
  const bool hasGetter = companion.hasGetAccessor();
  if (hasGetter) report("AssociatedStringSetHasGetter", findGetMethod);
  const bool isDirect = companion.hasStringSetDefault();
  if (!isDirect) report("StringSetIndirectInstantiation", findCompanionDefault);
  const bool isUsed = uses.isUsed(companion);
  if (isUsed) report("AssociatedStringSetUsedInSourceCode", findCompanionUse);
  return !hasGetter && isDirect && !isUsed;
}

// The members as a list, such as `{'auto', 'manual'}`; empty for a set without members.
fl::ustring memberList(const ConstrainedSetInfo& set, const SetForm& form) {
  if (set.values.empty()) return {};
  fl::ustring text = form.openingBracket;
  for (const fl::ustring& value : set.values) {
    if (&value != &set.values.front()) text += u", ";
    text += inQuotes(value, holdsStrings(set));
  }
  return text + form.closingBracket;
}

// Ordered from right to left in the declaration.
ActionList makeMemberActions(const Property& property, const ConstrainedSetInfo& set) {
  const SetForm& form = holdsStrings(set) ? kStringForm : kCharForm;
  const fl::ustring validator =
      u"velum.system.mustBeMember(" + property.getName() + u", " + memberList(set, form) + u")";
  ActionList actions;
  actions.push_back(std::make_unique<MustBeMemberInitializer>(
      &property, set.values.empty() ? u"" : set.values.front(), holdsStrings(set)));
  actions.push_back(std::make_unique<AddValidators>(&property, std::vector{validator}));
  actions.push_back(std::make_unique<ClassValidation>(&property, form.className));
  actions.push_back(std::make_unique<SizeValidation>(&property, form.size));
  return actions;
}

// Whether the first member of the set would become the default value, but the set is empty.
bool lacksFirstValue(const Property& property, const ConstrainedSetInfo& set) {
  return set.values.empty() && !property.hasDefaultValue() && !property.isDependent();
}

// A set that can be declared in its property.
struct ConvertibleSet {
  const Property* property;
  const Property* companion;
  ConstrainedSetInfo set;
  // The index of the conversion, and whether it is made.
  std::size_t conversion = 0;
  bool isMade = false;
  // The index of the next set with a companion of the same name; 0 for the last.
  std::size_t nextOfCompanion = 0;
};

// The set of the property if it can be declared in the property, after which the companion is no
// longer needed. Otherwise empty; adds findings with the reasons.
std::optional<ConvertibleSet> findConvertibleSet(const ClassDefinition& classDefinition,
                                                 const Property& property, ConstrainedSetInfo set,
                                                 CompanionUses& uses, BlockUpdate& update) {
  if (!isReplaceableSet(set)) return std::nullopt;
  if (reportAbstractProperty(property, ConversionKindType::stringSet, update)) return std::nullopt;
  const Property* companion = classDefinition.findProperty(set.setPropertyName);
  if (companion == nullptr || !canDeleteCompanion(property, *companion, uses, update)) {
    return std::nullopt;
  }
  if (lacksFirstValue(property, set)) return std::nullopt;
  return ConvertibleSet{&property, companion, std::move(set)};
}

}  // namespace
}  // namespace soca
