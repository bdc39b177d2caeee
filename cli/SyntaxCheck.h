// The command `check`: the syntax errors of files, wherever they lie.
#pragma once

#include "cli/Console.h"
#include "cli/ExitCodes.h"
#include "cli/Options.h"

namespace soca::cli {

// Prints the errors of all files on standard output, in the order of the arguments.
ExitCodeType runSyntaxCheck(const Options& options, Console& console);

}  // namespace soca::cli
