// The command `update`, with a verification of what it wrote.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Runs the update. If `options` have a command to verify it and files were written, runs the
// command, and undoes the run if it fails or is interrupted. Throws UsageError.
ExitCodeType runVerifiedUpdate(const Options& options, const ClassRoots& roots, Console& console);

}  // namespace soca::cli
