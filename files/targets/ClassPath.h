// The class path and the class table of a run.
#pragma once

#include "cli/options/Options.h"
#include "files/targets/ClassRoots.h"

namespace soca::cli {

// Sets both for the process from the options, and returns the roots. Throws UsageError, without
// setting anything, for a root that is no folder and for a file that is no class table.
ClassRoots setClassPath(const Options& options);

}  // namespace soca::cli
