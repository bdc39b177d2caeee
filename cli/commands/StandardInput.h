// `update --stdin-path PATH -`: the update of a text from standard input.
#pragma once

#include <string>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Reads the text of the class from standard input and prints what becomes of it: the new bytes, or
// those that came in. Of the class itself nothing is read from a disk. On failure nothing is
// printed but complaints, and in the formats for programs what they have for failures.
//
// Throws UsageError for a path without a class.
ExitCodeType updateStandardInput(const Options& options, const ClassRoots& roots, Console& console);

}  // namespace soca::cli
