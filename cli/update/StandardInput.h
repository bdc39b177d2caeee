// `update --stdin-path PATH -`: the update of a text from standard input.
#pragma once

#include <string>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Reads the text of the class from standard input and prints the new bytes, or the same bytes if
// nothing changes. Does not read the file of the class. On failure it prints only messages, and in
// the formats for programs their form of failures.
//
// Throws UsageError for a path without a class.
ExitCodeType updateStandardInput(const Options& options, const ClassRoots& roots, Console& console);

}  // namespace soca::cli
