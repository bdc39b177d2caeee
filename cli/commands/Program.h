// The program.
#pragma once

#include <string>
#include <vector>

#include "cli/terminal/Console.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

// Does what the arguments, those behind the program's name, ask for. Sets signal handlers and the
// class path of the process.
ExitCodeType runProgram(const std::vector<std::string>& arguments, Console& console);

}  // namespace soca::cli
