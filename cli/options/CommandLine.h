// Parses the command line.
#pragma once

#include <string>
#include <vector>

#include "cli/options/Options.h"

namespace soca::cli {

// The colours that the arguments select, also if the arguments are not valid.
ColorType findColor(const std::vector<std::string>& arguments);

// `arguments` are without the program's name. Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace soca::cli
