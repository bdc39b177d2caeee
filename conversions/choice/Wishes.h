// What a person wants of each conversion of a class.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "conversions/Conversions.h"
#include "conversions/risk/Risk.h"
#include "conversions/selection/ConversionSelection.h"

namespace soca {

struct Wish {
  // Why the conversion is not wanted; empty if it is.
  std::optional<ConversionReason> leftOut;
  // The highest risk with which it is made.
  RiskType highestRisk = RiskType::review;
};

// The class whose conversions are chosen.
struct ChoosingClass {
  std::string name;
  // Whether its file is not the one for which conversions were chosen.
  bool isOutdated = false;
};

// One for each conversion; their ids are those of the text as it was read. `needs` is the result of
// `findNeeds`: of conversions that are only made together, all are wanted or none.
std::vector<Wish> findWishes(const std::vector<Conversion>& conversions,
                             const std::vector<std::size_t>& needs, const ChoosingClass& owner,
                             const ConversionSelection& selection, RiskType highestRisk);

}  // namespace soca
