// The program.
#pragma once

#include <string>
#include <vector>

#include "cli/terminal/Console.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Runs the command of the arguments, which are without the program's name. Sets signal handlers and
// the class path of the process.
ExitCodeType runProgram(const std::vector<std::string>& arguments, Console& console);

}  // namespace soca::cli
