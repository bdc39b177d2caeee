#include "conversions/risk/DefaultRisks.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "conversions/parts/LinePlace.h"
#include "conversions/risk/LiteralValue.h"
#include "conversions/risk/Reasons.h"
#include "model/PropertiesBlock.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

using ca::astapi::Node;
using ca::astapi::PropertyNode;
using fl::i18n::to_string;

bool isPositiveInteger(const LiteralValue& value) {
  return value.type == LiteralValue::Type::number && !value.isSigned &&
         std::isfinite(value.number) && value.number > 0 &&
         std::floor(value.number) == value.number;
}

bool isLogical(const LiteralValue& value) {
  return value.type == LiteralValue::Type::number && (value.number == 0 || value.number == 1);
}

// What a bad default value is not.
std::string_view expectationOf(ConversionKindType kind, bool isPlural) {
  switch (kind) {
    case ConversionKindType::positiveInteger:
      return isPlural ? "are no positive integers" : "is no positive integer";
    case ConversionKindType::logical:
      return isPlural ? "are no logical values" : "is no logical value";
    default:
      return isPlural ? "are not in their sets" : "is not in its set";
  }
}

// Judges the default values of one conversion after another.
class DefaultJudge {
 public:
  explicit DefaultJudge(const PlannedClass* planned) : planned_(*planned) {}

  void judge(const RuleConversion& conversion, ConversionRisk& risk) {
    bad_.clear();
    if (conversion.kind == ConversionKindType::stringSet) {
      judge(*conversion.property, conversion.kind, risk);
    } else {
      for (const Node* property : conversion.block->members) {
        judge(static_cast<const PropertyNode&>(*property), conversion.kind, risk);
      }
    }
    if (!bad_.empty()) report(conversion.kind, risk);
  }

 private:
  void judge(const PropertyNode& property, ConversionKindType kind, ConversionRisk& risk) {
    if (property.defaultValue == nullptr) return;
    const auto value = literalValueOf(*planned_.analysis, *property.defaultValue);
    if (!value) {
      risk.isDefaultKnown = false;
    } else if (!isAccepted(*value, property, kind)) {
      bad_.push_back(&property);
    }
  }

  bool isAccepted(const LiteralValue& value, const PropertyNode& property,
                  ConversionKindType kind) {
    switch (kind) {
      case ConversionKindType::positiveInteger:
        return isPositiveInteger(value);
      case ConversionKindType::logical:
        return isLogical(value);
      default:
        return isInSet(value, property);
    }
  }

  // A declaration with an empty set has a syntax error, whatever the default value is.
  bool isInSet(const LiteralValue& value, const PropertyNode& property) {
    const sotarn::ConstrainedSetInfo* set = setOf(property);
    if (set == nullptr || set->values.empty()) return true;
    return value.isText() && std::ranges::find(set->values, value.text) != set->values.end();
  }

  // Null if the class runtime does not know a set.
  const sotarn::ConstrainedSetInfo* setOf(const PropertyNode& property) {
    if (description_ == nullptr) {
      description_ = sotarn::describeClass(to_string(planned_.result.className));
      if (description_ == nullptr) return nullptr;
    }
    const auto known = description_->properties.find(to_string(property.name->text.view()));
    return known == description_->properties.end() ? nullptr : known->second.constrainedSet.get();
  }

  void report(ConversionKindType kind, ConversionRisk& risk) const {
    const bool isPlural = bad_.size() > 1;
    ConversionReason reason{"soca:DefaultOutsideValidators", {}, {}};
    std::vector<std::string> names;
    for (const PropertyNode* property : bad_) {
      const std::string name = to_string(property->name->text.view());
      const std::string value = shortened(planned_.analysis->nodeTextView(*property->defaultValue));
      names.push_back(isPlural ? fmt::format("'{}' ({})", name, value)
                               : fmt::format("'{}' is {}", name, value));
      if (reason.places.size() == mostPlaces) continue;
      reason.places.push_back({placeOfName(*planned_.analysis, *property->defaultValue),
                               fmt::format("The default value of '{}'.", name)});
    }
    reason.detail = isPlural ? fmt::format("the defaults of the properties {} {}", listOf(names),
                                           expectationOf(kind, isPlural))
                             : fmt::format("the default of property {}, which {}", names.front(),
                                           expectationOf(kind, isPlural));
    addReason(RiskType::unsafe, std::move(reason), risk);
  }

  const PlannedClass& planned_;
  // That of the class, once it was needed.
  std::shared_ptr<const sotarn::ClassDescription> description_;
  std::vector<const PropertyNode*> bad_;
};

}  // namespace

void judgeDefaults(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  DefaultJudge judge(&planned);
  for (std::size_t i = 0; i < risks.size(); ++i) {
    const RuleConversion& conversion = planned.conversions[i];
    if (conversion.kind == ConversionKindType::stringSet || conversion.isTakenOver) {
      judge.judge(conversion, risks[i]);
    }
  }
}

}  // namespace soca
