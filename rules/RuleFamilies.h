// The rule families. All code that names, counts, selects or makes them uses the table in this
// file.
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

// One value for each family.
template <class Value>
class PerFamily {
 public:
  constexpr Value& operator[](RuleFamilyType type) { return values_[indexOf(type)]; }
  constexpr const Value& operator[](RuleFamilyType type) const { return values_[indexOf(type)]; }

 private:
  static constexpr std::size_t indexOf(RuleFamilyType type) {
    return static_cast<std::size_t>(type);
  }

  std::array<Value, ruleFamilies.size()> values_{};
};

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

// The families that the mask selects, in running order.
std::vector<RuleFamilyType> selectRuleFamilies(std::uint64_t mask);

}  // namespace soca
