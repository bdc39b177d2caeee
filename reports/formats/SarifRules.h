// What SARIF has to say of the program itself: its rules and its failures, with their explanations.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/Conversions.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// The `tool`: a rule for each rule family and for each message that stands beside an update, and a
// notification for each that ends one.
nlohmann::ordered_json sarifTool();

// What refers to a rule: `ruleId`, `ruleIndex`, `level` and `message`.
nlohmann::ordered_json sarifResult(const Conversion& conversion);
nlohmann::ordered_json sarifResult(const Finding& finding);

// The `descriptor` of a failure by its full id; nothing for one that is not explained.
std::optional<nlohmann::ordered_json> sarifDescriptor(std::string_view fullId);

}  // namespace soca
