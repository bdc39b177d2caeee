#include "service/PlannedClass.h"

#include <algorithm>

#include "model/AnalyzerPositions.h"
#include "rules/FindingPlaces.h"

namespace soca {

std::span<const ActionOwner> PlannedClass::ownersOf(std::size_t action) const {
  const auto range = std::ranges::equal_range(owners, static_cast<std::uint32_t>(action), {},
                                              &ActionOwner::action);
  return {range.begin(), range.end()};
}

Member PlannedClass::memberOf(const RuleFinding& finding) const {
  return {finding.memberName->text.getText(), makeExtentOfNode(*analysis, *finding.member),
          makeExtentOfNode(*analysis, *finding.memberName)};
}

std::vector<std::vector<FindingPlace>> PlannedClass::findPlaces() const {
  PlaceSearch search(analysis.get());
  std::vector<std::vector<FindingPlace>> places;
  places.reserve(findings.size());
  for (const RuleFinding& finding : findings) places.push_back(search.placesOf(finding));
  return places;
}

}  // namespace soca
