// The class path and the class table of a run.
#pragma once

#include <string>
#include <vector>

#include "files/targets/ClassRoots.h"

namespace soca {

// Sets both for the process, and returns the roots as absolute paths. Without roots the current
// folder is the only one; an empty `classTable` means none. Throws UsageError, without setting
// anything, for a root that is no folder and for a file that is no class table.
ClassRoots setClassPath(const std::vector<std::string>& rootFolders, const std::string& classTable);

}  // namespace soca
