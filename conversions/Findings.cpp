#include "conversions/Findings.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "model/AnalyzerPositions.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

// The largest number of other places of a finding that are reported. Only references exceed it.
constexpr std::size_t mostPlaces = 50;

std::string textOf(const std::variant<long, std::string, fl::ustring>& argument) {
  if (const auto* text = std::get_if<fl::ustring>(&argument)) return fl::i18n::to_string(*text);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return std::to_string(std::get<long>(argument));
}

std::string_view textOf(FindingPlaceType type) {
  switch (type) {
    case FindingPlaceType::abstractAttribute:
      return "The attribute that makes it abstract.";
    case FindingPlaceType::companion:
      return "The set property.";
    case FindingPlaceType::companionDefault:
      return "The default value of the set property.";
    case FindingPlaceType::getMethod:
      return "Its get method.";
    case FindingPlaceType::companionUse:
      return "The use of the set property.";
    case FindingPlaceType::otherMethod:
      return "The method that has the new name.";
    case FindingPlaceType::signature:
      return "The signature of the method.";
    case FindingPlaceType::access:
      return "The access of the method.";
    case FindingPlaceType::reference:
      return "A reference to the method.";
  }
  return {};
}

std::vector<RelatedPlace> describePlaces(const std::vector<FindingPlace>& places) {
  std::vector<RelatedPlace> related;
  for (std::size_t i = 0; i < std::min(places.size(), mostPlaces); ++i) {
    related.push_back({placeOf(places[i].extent), std::string(textOf(places[i].type))});
  }
  return related;
}

}  // namespace

std::vector<Finding> describeFindings(const PlannedClass& planned, FindingPlacesType places) {
  std::vector<Finding> findings;
  findings.reserve(planned.findings.size());
  for (const RuleFinding& known : planned.findings) {
    Finding& finding = findings.emplace_back();
    finding.id = known.message.id;
    finding.text = fl::i18n::to_string(planned.result.messages[findings.size() - 1]);
    if (places == FindingPlacesType::none) continue;
    std::ranges::transform(known.message.arguments, std::back_inserter(finding.arguments),
                           [](const auto& argument) { return textOf(argument); });
    static_cast<LinePlace&>(finding) = placeOfName(*planned.analysis, *known.memberName);
  }
  if (places != FindingPlacesType::related) return findings;
  const auto related = planned.findPlaces();
  for (std::size_t i = 0; i < related.size(); ++i) findings[i].related = describePlaces(related[i]);
  return findings;
}

LinePlace placeOf(const Extent& extent) {
  return {extent.start.line + 1, extent.start.column + 1, extent.end.column + 1,
          extent.end.line + 1};
}

LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name) {
  return placeOf(makeExtentOfNode(analysis, name));
}

}  // namespace soca
