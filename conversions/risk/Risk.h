// How far the result of a conversion can be trusted.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/parts/LinePlace.h"

namespace soca {

// `safe` keeps the meaning and all text, `review` keeps the meaning but a person should look, and
// the result of `unsafe` is known or likely to be wrong.
enum class RiskType { safe, review, unsafe };

// As users know them, in the order of RiskType.
inline constexpr auto riskNames = std::to_array<std::string_view>({"safe", "review", "unsafe"});

constexpr std::string_view riskName(RiskType type) {
  return riskNames[static_cast<std::size_t>(type)];
}

// Reasons after which lines are laid apart, and that they are.
inline constexpr std::string_view editsMeetId = "soca:EditsMeet";
inline constexpr std::string_view laidApartId = "soca:LaidApart";

// Why a conversion has its risk, or why it is not made. All texts are UTF-8.
struct ConversionReason {
  // A full id, which `soca explain` knows: `soca:StillReferenced`.
  std::string id;
  // A clause that names what it is about: "the default of property 'Gain' is 0.5".
  std::string detail;
  // In the text in which the conversion was found, in the order of the text.
  std::vector<RelatedPlace> places;
};

struct ConversionRisk {
  RiskType type = RiskType::safe;
  // The most risky first; empty for a safe conversion.
  std::vector<ConversionReason> reasons;
  // Whether all default values that the conversion concerns are literals, which can be judged.
  bool isDefaultKnown = true;
};

}  // namespace soca
