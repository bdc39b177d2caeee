#include "conversions/risk/SuperClassRisks.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "conversions/risk/DefaultRisks.h"
#include "conversions/risk/Reasons.h"
#include "conversions/superclasses/Ancestry.h"
#include "conversions/superclasses/SuperClassList.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "rules/MethodRules.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

RelatedPlace placeInList(const PlannedClass& planned, std::string_view superClass) {
  return {placeInSuperClassList(*planned.analysis, superClass), "The superclass."};
}

// Whether the rule queried the superclasses of the class to find the conversion, or to make it.
bool restsOnSuperClasses(const RuleConversion& conversion) {
  switch (conversion.kind) {
    case ConversionKindType::positiveInteger:
    case ConversionKindType::logical:
      return conversion.isTakenOver;
    case ConversionKindType::stringSet:
    case ConversionKindType::mixins:
    case ConversionKindType::deleteRedundant:
      return true;
    case ConversionKindType::emptyBlock:
    case ConversionKindType::rename:
    case ConversionKindType::renameNegate:
    case ConversionKindType::deleteObsolete:
      return false;
  }
  return false;
}

// Whether the update of the class would rename its method.
bool wouldRename(const std::string& className, fl::ustring_view oldName) {
  try {
    const auto planned =
        planActions(to_ustring(className), ruleFamily(RuleFamilyType::impl).bit, false);
    return std::ranges::any_of(planned.front().conversions, [&](const RuleConversion& each) {
      return !each.newName.empty() && each.method->name->text.view() == oldName;
    });
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const fl::filesystem::ReadError&) {
    throw;
  } catch (const std::exception&) {
    // A class that cannot be updated.
    return false;
  }
}

bool definesMethod(const std::string& className, const std::string& method) {
  const auto description = sotarn::describeClass(className);
  return description != nullptr &&
         std::ranges::find(description->methods, method) != description->methods.end();
}

class SuperClassJudge {
 public:
  SuperClassJudge(const PlannedClass* planned, std::vector<ConversionRisk>* risks)
      : planned_(*planned), risks_(*risks), className_(to_string(planned->result.className)) {}

  void judge() {
    for (std::size_t i = 0; i < risks_.size(); ++i) {
      const RuleConversion& conversion = planned_.conversions[i];
      if (conversion.kind == ConversionKindType::mixins) findUnresolved(risks_[i]);
      if (restsOnSuperClasses(conversion)) findPartlyRead(risks_[i]);
      if (conversion.kind == ConversionKindType::deleteRedundant) {
        findGainedMethod(conversion, risks_[i]);
      }
    }
  }

 private:
  void findUnresolved(ConversionRisk& risk) const {
    const auto unresolved = findUnresolvedInList(planned_);
    if (!unresolved) return;
    addReason(RiskType::unsafe,
              {"soca:SuperClassUnresolved",
               describeUnresolved(*unresolved),
               {{static_cast<const LinePlace&>(*unresolved), "The superclass."}}},
              risk);
  }

  void findPartlyRead(ConversionRisk& risk) {
    const auto& broken = partlyRead();
    if (broken.empty()) return;
    std::string detail = describePartlyRead(broken.front()) + ", and the conversion rests on it";
    std::vector<RelatedPlace> places = {placeInList(planned_, broken.front().name)};
    addReason(RiskType::unsafe, {"soca:SuperClassUnresolved", std::move(detail), std::move(places)},
              risk);
  }

  // Computed when it is first needed.
  const std::vector<Ancestry::PartlyRead>& partlyRead() {
    if (!partlyRead_) partlyRead_ = soca::findPartlyRead(className_);
    return *partlyRead_;
  }

  void findGainedMethod(const RuleConversion& conversion, ConversionRisk& risk) const {
    const fl::ustring_view oldName = oldNameOf(conversion.method->name->text.view());
    if (oldName.empty()) return;
    std::vector<std::string> names;
    std::vector<RelatedPlace> places;
    const std::string method = to_string(oldName);
    for (const std::string& super : Ancestry::superClassesOf(className_)) {
      if (!definesMethod(super, method) || !wouldRename(super, oldName)) continue;
      if (names.empty()) places.push_back(placeInList(planned_, super));
      names.push_back(fmt::format("'{}'", super));
    }
    if (names.empty()) return;
    std::string detail = fmt::format(
        "the update of the superclass{} {} renames its '{}' to '{}', which this class would "
        "inherit",
        names.size() == 1 ? "" : "es", listOf(names), method,
        to_string(conversion.method->name->text.view()));
    addReason(RiskType::unsafe,
              {"soca:SuperClassGainsMethod", std::move(detail), std::move(places)}, risk);
  }

  const PlannedClass& planned_;
  std::vector<ConversionRisk>& risks_;
  std::string className_;
  std::optional<std::vector<Ancestry::PartlyRead>> partlyRead_;
};

}  // namespace

void judgeSuperClasses(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  SuperClassJudge(&planned, &risks).judge();
}

void findAddedSystemBase(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  const auto mixins =
      std::ranges::find(planned.conversions, ConversionKindType::mixins, &RuleConversion::kind);
  if (mixins == planned.conversions.end() || !addsSystemBaseBeside(planned)) return;
  addReason(RiskType::review,
            {"soca:SystemAdded", "no other superclass is known to be a System object", {}},
            risks[static_cast<std::size_t>(mixins - planned.conversions.begin())]);
}

}  // namespace soca
