// The command `explain`: the conversions of the rules and the meaning of the messages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The rules and the ids of all messages, one line each.
std::string explainAll();

// The ids of all rules and messages, the latter without their catalog.
std::vector<std::string_view> explainedIds();

// The explanation of the rule or message with that id. Throws UsageError for an unknown id.
std::string explain(std::string_view id);

}  // namespace soca
