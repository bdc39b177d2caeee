// The superclasses of a tree that are not found.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Prints the superclasses that the classes of the arguments need and that are not found, in the
// order of their names; with `--format json` as a class table to complete. Throws UsageError for
// arguments that are on no root.
ExitCodeType printUnresolved(const Options& options, const ClassRoots& roots, Console& console);

}  // namespace soca::cli
