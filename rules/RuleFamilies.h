// The rule families and the kinds of conversions that they make. All code that names, counts,
// selects or makes them uses the tables in this file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace soca {

class AbstractActionFactory;
class MetaDataInterface;

// `metaData` must outlive what is made.
using FactoryMaker = std::unique_ptr<AbstractActionFactory>(MetaDataInterface* metaData);

// Each is defined beside its factory.
FactoryMaker makeCustomAttributeDeprecationFactory;
FactoryMaker makeMixinDeprecationFactory;
FactoryMaker makeImplDeprecationFactory;

// In running order.
enum class RuleFamilyType { attributes, mixins, impl };

struct RuleFamily {
  RuleFamilyType type;
  // Selects the family in an UpdateMask.
  std::uint64_t bit;
  // As users know it, and as the data file of messages does.
  std::string_view name;
  FactoryMaker* makeFactory;
};

// In the order of RuleFamilyType.
inline constexpr auto ruleFamilies = std::to_array<RuleFamily>({
    {RuleFamilyType::attributes, 2, "attributes", makeCustomAttributeDeprecationFactory},
    {RuleFamilyType::mixins, 1, "mixins", makeMixinDeprecationFactory},
    {RuleFamilyType::impl, 4, "impl", makeImplDeprecationFactory},
});

// The kinds of conversions, which differ in their subject: a superclass list, a block, a property
// or a method.
enum class ConversionKindType {
  positiveInteger,
  logical,
  stringSet,
  emptyBlock,
  mixins,
  rename,
  renameNegate,
  deleteObsolete,
  deleteRedundant,
};

struct ConversionKind {
  ConversionKindType type;
  RuleFamilyType family;
  // The name of the family, in most kinds followed by a slash and a second word.
  std::string_view name;
};

// In the order of ConversionKindType.
inline constexpr auto conversionKinds = std::to_array<ConversionKind>({
    {ConversionKindType::positiveInteger, RuleFamilyType::attributes,
     "attributes/positive-integer"},
    {ConversionKindType::logical, RuleFamilyType::attributes, "attributes/logical"},
    {ConversionKindType::stringSet, RuleFamilyType::attributes, "attributes/string-set"},
    {ConversionKindType::emptyBlock, RuleFamilyType::attributes, "attributes/empty-block"},
    {ConversionKindType::mixins, RuleFamilyType::mixins, "mixins"},
    {ConversionKindType::rename, RuleFamilyType::impl, "impl/rename"},
    {ConversionKindType::renameNegate, RuleFamilyType::impl, "impl/rename-negate"},
    {ConversionKindType::deleteObsolete, RuleFamilyType::impl, "impl/delete-obsolete"},
    {ConversionKindType::deleteRedundant, RuleFamilyType::impl, "impl/delete-redundant"},
});

// One value for each enumerator of a type with `count` of them.
template <class Type, std::size_t count, class Value>
class PerType {
 public:
  constexpr Value& operator[](Type type) { return values_[static_cast<std::size_t>(type)]; }
  constexpr const Value& operator[](Type type) const {
    return values_[static_cast<std::size_t>(type)];
  }

 private:
  std::array<Value, count> values_{};
};

template <class Value>
using PerFamily = PerType<RuleFamilyType, ruleFamilies.size(), Value>;
template <class Value>
using PerKind = PerType<ConversionKindType, conversionKinds.size(), Value>;

// The mask that selects every family.
constexpr std::uint64_t maskOfAllFamilies() {
  std::uint64_t mask = 0;
  for (const RuleFamily& family : ruleFamilies) mask |= family.bit;
  return mask;
}
inline constexpr std::uint64_t allFamilies = maskOfAllFamilies();

constexpr const RuleFamily& ruleFamily(RuleFamilyType type) {
  return ruleFamilies[static_cast<std::size_t>(type)];
}

constexpr const ConversionKind& conversionKind(ConversionKindType type) {
  return conversionKinds[static_cast<std::size_t>(type)];
}

// The rules that a client chooses: the families that are asked for conversions, and the kinds of
// conversions that may be made. At first all of them.
struct RuleChoice {
  RuleChoice();

  // A choice of nothing, to which families and kinds are added.
  static RuleChoice none();
  // Adds a family with all its kinds.
  void add(RuleFamilyType family);
  // Adds a kind, and its family without its other kinds.
  void add(ConversionKindType kind);
  bool isEverything() const { return families == allFamilies && hasWholeFamilies(); }
  // Whether each family is chosen with all its kinds, or not at all.
  bool hasWholeFamilies() const;

  // The families, as in an UpdateMask.
  std::uint64_t families = allFamilies;
  PerKind<bool> kinds;
};

// The families that the mask selects, in running order.
std::vector<RuleFamilyType> selectRuleFamilies(std::uint64_t mask);

}  // namespace soca
