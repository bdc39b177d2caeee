// The output of `--help`.
#pragma once

#include <string>

#include "cli/options/Options.h"

namespace soca::cli {

// Help on a command, or with CommandType::help on the whole program.
std::string helpText(CommandType subject);

}  // namespace soca::cli
