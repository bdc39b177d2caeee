// The command `explain`: what the rules convert and what the messages mean.
#pragma once

#include <string>
#include <string_view>

namespace soca::cli {

// The rules and the ids of all messages, each with a line.
std::string explainAll();

// The rule or message of that id. Throws UsageError for an id that there is none of.
std::string explain(std::string_view id);

}  // namespace soca::cli
