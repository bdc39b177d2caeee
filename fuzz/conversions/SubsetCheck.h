// Properties of a class with some of its conversions.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "fuzz/conversions/PlanAttempt.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "service/PlannedClass.h"

namespace soca::fuzz {

// The members that a text declares: first the properties, then the methods, each with its text from
// its first to its last token.
struct MemberTexts {
  explicit MemberTexts(const ca::AnalysisResult& analysis);

  friend bool operator==(const MemberTexts&, const MemberTexts&) = default;

  std::vector<fl::ustring> texts;
  std::size_t propertyCount = 0;
};

// The members of the new text; empty if there is none, or if it has faults.
std::optional<MemberTexts> findMembers(const PlanAttempt& attempted);

// Makes the conversions of `whole` whose index has `true` in `made`. `all` are the members after
// all conversions; null if these cannot be made, or not without faults. Throws a Violation unless
// the properties hold that checkConversions names for a subset.
void checkSubset(const PlannedClass& whole, const std::vector<bool>& made, const MemberTexts* all);

}  // namespace soca::fuzz
