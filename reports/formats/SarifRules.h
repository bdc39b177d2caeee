// The rules and failures of the program in SARIF, with their explanations.
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

// The `tool`: a rule for each rule family and for each finding, and unless the log is that of the
// service for each reason and each failure; and a notification for each failure.
nlohmann::ordered_json sarifTool(bool asService);

// The keys that refer to a rule: `ruleId`, `ruleIndex`, `level` and `message`. The id of a
// conversion is its kind, whose first part is the rule family.
nlohmann::ordered_json sarifResult(const Conversion& conversion);
// The text may have the details of the program.
nlohmann::ordered_json sarifResult(const Finding& finding, const std::string& text);

// The same keys for what is left as it is; `fullId` is that of the reason or failure. An id without
// an explanation has no rule.
nlohmann::ordered_json sarifResult(std::string_view fullId, std::string_view level,
                                   std::string text);

// The `descriptor` of a failure by its full id; empty for an id without an explanation.
std::optional<nlohmann::ordered_json> sarifDescriptor(std::string_view fullId);

}  // namespace soca
