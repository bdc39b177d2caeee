// The command `check`: the syntax errors of files at any place.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Prints the errors of all files on standard output, in the order of the arguments.
ExitCodeType runSyntaxCheck(const Options& options, Console& console);

}  // namespace soca::cli
