// The command `explain`: what the rules convert and what the messages mean.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The rules and the ids of all messages, each with a line.
std::string explainAll();

// The ids of all rules and messages, the latter without their catalog.
std::vector<std::string_view> explainedIds();

// The rule or message of that id. Throws UsageError for an id that there is none of.
std::string explain(std::string_view id);

}  // namespace soca
