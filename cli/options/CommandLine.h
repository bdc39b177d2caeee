// The reading of the command line.
#pragma once

#include <string>
#include <vector>

#include "cli/options/Options.h"

namespace soca::cli {

// The colours that the arguments ask for, also if there is something wrong with them.
ColorType findColor(const std::vector<std::string>& arguments);

// `arguments` are those after the program's name. Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace soca::cli
