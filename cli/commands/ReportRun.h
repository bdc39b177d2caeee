// The commands `actions` and `classes`, which print the service's reports.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Prints the reports in the order of the arguments. Throws UsageError for arguments that are on no
// root, and for folders.
ExitCodeType runReport(const Options& options, const ClassRoots& roots, Console& console);

}  // namespace soca::cli
