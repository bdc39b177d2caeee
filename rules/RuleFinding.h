// What cannot be converted, or what a person should check after a conversion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"
#include "rules/RuleFamilies.h"

namespace soca {

// Used instead of the index of a conversion.
inline constexpr std::size_t noConversion = std::numeric_limits<std::size_t>::max();

enum class FindingPlaceType {
  // The block attribute that makes the property abstract.
  abstractAttribute,
  // The name of the companion in its declaration; its default value; the name of its get method;
  // its name after a dot.
  companion,
  companionDefault,
  getMethod,
  companionUse,
  // The name of the method that already has the new name.
  otherMethod,
  // From `function` to the last input.
  signature,
  // The opening of the methods block, with its access.
  access,
  // The name of the method outside of its declaration.
  reference,
};

// A place that prevents a conversion, or that refers to a converted method.
struct FindingPlace {
  FindingPlaceType type;
  Extent extent;

  friend bool operator==(const FindingPlace&, const FindingPlace&) = default;
};

// The signature that a rule requires of a method, which must also be protected.
struct ExpectedSignature {
  // Includes the object.
  std::uint64_t inputs;
  // Whether more inputs are allowed.
  bool takesMoreInputs;
  std::uint64_t outputs;
};

struct RuleFinding;
class PlaceSearch;

// Finds the places of a finding in its file, in the order of the file.
using PlaceFinder = std::vector<FindingPlace>(PlaceSearch& search, const RuleFinding& finding);

// The pointers are into the analysis of the class, which must outlive it, or to constants.
struct RuleFinding {
  resource_core::BaseMsgID message;
  // The kind of the conversion concerned, even if it is prevented.
  ConversionKindType kind;
  // The property or method concerned.
  const ca::astapi::Node* member = nullptr;
  const ca::astapi::Identifier* memberName = nullptr;
  // The companion, or the method that already has the new name; null for other findings.
  const ca::astapi::Node* other = nullptr;
  // Only for a method with another signature or access.
  const ExpectedSignature* expected = nullptr;
  // Null if there are no places besides the member.
  PlaceFinder* findPlaces = nullptr;
  // The index of the conversion that the finding is a result of: without that conversion there is
  // no such finding. `noConversion` for what prevents a conversion.
  std::size_t conversion = noConversion;
};

}  // namespace soca
