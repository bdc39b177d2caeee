// The places of the findings of the rules, which are searched only for clients that need them.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "model/DotIndex.h"
#include "model/MethodsBlock.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/text/UString.h"
#include "rules/RuleFinding.h"

namespace soca {

// The searches for the places of all findings of one class. What several of them need is computed
// once, when it is first needed, so that the work grows linearly with the class.
class PlaceSearch {
 public:
  // `analysis` must outlive this object.
  explicit PlaceSearch(const ca::AnalysisResult* analysis) : analysis_(*analysis) {}

  // In the order of the file; empty if the finding has no places besides the member.
  std::vector<FindingPlace> placesOf(const RuleFinding& finding);

  const ca::AnalysisResult& analysis() const { return analysis_; }
  // The `Abstract` attributes of the blocks that declare a property of that name.
  std::vector<const ca::astapi::Node*> abstractAttributesOf(fl::ustring_view property);
  // The names of all methods of that name.
  std::vector<const ca::astapi::Node*> methodNames(fl::ustring_view method);
  // The position after the first occurrence of "." followed by the name of a property, or npos.
  std::size_t findBehindDot(fl::ustring_view property);

 private:
  using NodesByName = std::unordered_multimap<fl::ustring_view, const ca::astapi::Node*>;

  const ca::AnalysisResult& analysis_;
  std::optional<NodesByName> abstractAttributes_;
  std::optional<NodesByName> methods_;
  std::optional<DotIndex> dots_;
};

// Only those in the file of the class.
PlaceFinder findAbstractAttributes;

// For findings about a property and its companion.
PlaceFinder findGetMethod;
PlaceFinder findCompanionDefault;
PlaceFinder findCompanionUse;

// The access of the methods block that has the method.
MethodAccessType accessOf(const ca::AnalysisResult& analysis, const ca::astapi::Node* method);

// For findings about a method.
PlaceFinder findOtherMethod;
// The parts that differ from the expected signature and access.
PlaceFinder findSignature;
PlaceFinder findReferences;

}  // namespace soca
