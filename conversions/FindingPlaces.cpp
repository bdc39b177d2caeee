#include "conversions/FindingPlaces.h"

#include <algorithm>
#include <array>
#include <utility>

#include "conversions/ClassMembers.h"
#include "model/AnalyzerPositions.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using ca::astapi::Identifier;
using ca::astapi::StringId;
using fl::i18n::to_ustring;

// The largest number of references to one method that are reported.
constexpr std::size_t mostReferences = 50;

constexpr auto referenceMessages =
    std::to_array<std::string_view>({"LegacyImplReferenced", "DeprecatedImplReferenced",
                                     "LegacyImplReferencedStrictDefaultsRedundantNonObsolete"});

LinePlace placeAt(const SourcePosition& start, std::size_t length) {
  return {start.line + 1, start.column + 1, start.column + 1 + length};
}

bool isAboutMethod(const Finding& finding) { return finding.id.find("Impl") != std::string::npos; }

}  // namespace

LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name) {
  const Extent extent = makeExtentOfNode(analysis, name);
  return placeAt(extent.start, extent.end.column - extent.start.column);
}

FindingPlaces::FindingPlaces(const ca::AnalysisResult& analysis) : analysis_(analysis) {
  // Of two declarations the first is used.
  for (const DeclaredProperty& property : declaredProperties(analysis)) {
    properties_.emplace(property.name, property.node->name);
  }
  for (const DeclaredMethod& method : declaredMethods(analysis)) {
    methods_.emplace(method.name, method.node->name);
  }
}

void FindingPlaces::addMembers(std::vector<Finding>& findings) const {
  for (Finding& finding : findings) {
    if (finding.arguments.empty()) continue;
    const NodesByName& nodes = isAboutMethod(finding) ? methods_ : properties_;
    const auto node = nodes.find(to_ustring(finding.arguments.front()));
    if (node != nodes.end())
      static_cast<LinePlace&>(finding) = placeOfName(analysis_, *node->second);
  }
}

void FindingPlaces::addRelated(std::vector<Finding>& findings) const {
  std::vector<Finding*> withReferences;
  for (Finding& finding : findings) {
    if (std::ranges::find(referenceMessages, finding.id) != referenceMessages.end()) {
      withReferences.push_back(&finding);
    }
    if (finding.arguments.size() < 2) continue;
    const std::string& other = finding.arguments[1];
    if (finding.id == "ImplNameConflictAfterConversion") {
      addName(methods_, other, "The method that has the new name.", finding);
    }
    if (!finding.id.starts_with("AssociatedStringSet") && !finding.id.starts_with("StringSet")) {
      continue;
    }
    addName(properties_, other, "The set property.", finding);
    addName(methods_, "get." + other, "Its get method.", finding);
    if (finding.id == "AssociatedStringSetUsedInSourceCode") addUse(finding);
  }
  if (!withReferences.empty()) addReferences(withReferences);
  for (Finding& finding : findings) {
    std::ranges::sort(finding.related, {}, [](const RelatedPlace& place) {
      return std::pair(place.line, place.column);
    });
  }
}

void FindingPlaces::addName(const NodesByName& nodes, std::string_view name, std::string_view text,
                            Finding& finding) const {
  const auto node = nodes.find(to_ustring(name));
  if (node != nodes.end())
    finding.related.push_back({placeOfName(analysis_, *node->second), std::string(text)});
}

void FindingPlaces::addUse(Finding& finding) const {
  const auto name = to_ustring(finding.arguments[1]);
  const std::size_t behind = fl::findBehindDot(analysis_.sourceTextView(), name);
  if (behind == fl::ustring_view::npos) return;
  const auto start =
      makePosition(analysis_, static_cast<std::uint32_t>(behind - name.size()), false);
  finding.related.push_back({placeAt(start, name.size()), "The use of the set property."});
}

void FindingPlaces::addReferences(std::vector<Finding*>& findings) const {
  std::vector<std::pair<StringId, Finding*>> wanted;
  for (Finding* finding : findings) {
    wanted.emplace_back(StringId(to_ustring(finding->arguments.front())), finding);
  }
  ca::astapi::NodeVisitor<Identifier> visitor([&](const Identifier& identifier) {
    for (const auto& [id, finding] : wanted) {
      if (!(identifier.id == id) || finding->related.size() == mostReferences) continue;
      const LinePlace place = placeOfName(analysis_, identifier);
      const bool isItself = place.line == finding->line && place.column == finding->column;
      if (!isItself) finding->related.push_back({place, "A reference to the method."});
    }
  });
  visitor(analysis_.getRootNode());
}

}  // namespace soca
