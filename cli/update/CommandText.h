// Command lines that a person types after a run.
#pragma once

#include <string>

#include "cli/options/Options.h"

namespace soca::cli {

// `soca update` with the options that select and decide classes, as they were given, without what
// selects conversions and without the arguments: "soca update -p src".
std::string commandOf(const Options& options);

// The arguments as they were given.
std::string argumentsOf(const Options& options);

// The text as one word for a shell, in quotes if it needs them.
std::string quoteForShell(const std::string& text);

}  // namespace soca::cli
