// The class path and the class table of a run.
#pragma once

#include "cli/options/Options.h"
#include "files/targets/ClassRoots.h"

namespace soca::cli {

// Sets both for the process, as the options say, and gives the roots. Throws UsageError for a root
// that is no folder and for a file that is no class table; nothing is set then.
ClassRoots setClassPath(const Options& options);

}  // namespace soca::cli
