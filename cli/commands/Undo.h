// The command `undo`.
#pragma once

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Restores the files of a run, or lists the runs. Throws UsageError for an invalid run number, and
// JournalError.
ExitCodeType runUndo(const Options& options, Console& console);

}  // namespace soca::cli
