#include "conversions/Conversions.h"

#include <fmt/core.h>

#include <algorithm>
#include <unordered_set>

#include "model/AnalyzerPositions.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

using ca::astapi::Node;
using fl::i18n::to_string;

// The largest number of properties that a message names.
constexpr std::size_t mostNames = 8;

// "'A', 'B' and 3 more"
std::string listOf(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < std::min(names.size(), mostNames); ++i) {
    list += fmt::format("{}'{}'", i == 0 ? "" : ", ", names[i]);
  }
  if (names.size() > mostNames) list += fmt::format(" and {} more", names.size() - mostNames);
  return list;
}

class ConversionDescriber {
 public:
  explicit ConversionDescriber(const PlannedClass& planned) : planned_(planned) {
    for (const RuleConversion& each : planned.conversions) companions_.insert(each.companion);
  }

  void describe(const RuleConversion& known, Conversion& conversion) const {
    conversion.kind = known.kind;
    conversion.place = findExtent(*planned_.analysis, known);
    if (known.method != nullptr) {
      describeMethod(known, conversion);
    } else if (known.property != nullptr) {
      describeProperties(known, conversion);
    } else if (known.block != nullptr) {
      conversion.message = "block";
    } else {
      conversion.message = "mixins";
      conversion.arguments = {to_string(planned_.result.className)};
    }
  }

 private:
  template <class Declaration>
  void setMember(const Declaration& declaration, Conversion& conversion) const {
    conversion.member = to_string(declaration.name->text.view());
    conversion.place = makeExtentOfNode(*planned_.analysis, *declaration.name);
  }

  void describeMethod(const RuleConversion& known, Conversion& conversion) const {
    setMember(*known.method, conversion);
    conversion.message = known.newName.empty() ? "deleted" : "renamed";
    conversion.arguments = {conversion.member};
    if (!known.newName.empty()) conversion.arguments.push_back(to_string(known.newName));
  }

  void describeProperties(const RuleConversion& known, Conversion& conversion) const {
    setMember(*known.property, conversion);
    std::vector<std::string> names = {conversion.member};
    if (known.block != nullptr) names = namesIn(*known.block);
    conversion.message = names.size() > 1 ? "properties" : "property";
    conversion.arguments = {names.size() > 1 ? listOf(names) : conversion.member};
  }

  // Without companions that sets are converted from.
  std::vector<std::string> namesIn(const ca::astapi::PropertiesBlockNode& block) const {
    std::vector<std::string> names;
    for (const Node* member : block.members) {
      const auto* property = static_cast<const ca::astapi::PropertyNode*>(member);
      if (!companions_.contains(property)) names.push_back(to_string(property->name->text.view()));
    }
    return names;
  }

  const PlannedClass& planned_;
  std::unordered_set<const ca::astapi::PropertyNode*> companions_;
};

}  // namespace

const ConversionReason* Conversion::findLaidApart() const {
  if (!isMade() || risk.reasons.empty() || risk.reasons.back().id != laidApartId) return nullptr;
  return &risk.reasons.back();
}

std::vector<Conversion> describeConversions(const PlannedClass& planned) {
  const ConversionDescriber describer(planned);
  const auto ids = makeConversionIds(*planned.analysis, planned.conversions);
  const std::string className = to_string(planned.result.className);
  std::vector<Conversion> conversions(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    conversions[i].id = fmt::format("{}#{}", className, to_string(ids[i]));
    describer.describe(planned.conversions[i], conversions[i]);
  }
  return conversions;
}

}  // namespace soca
