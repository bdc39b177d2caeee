// The command `undo`.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Puts back what a run has changed, or lists the runs. Throws UsageError for what is no run, and
// JournalError.
ExitCodeType runUndo(const Options& options, Console& console);

}  // namespace soca::cli
