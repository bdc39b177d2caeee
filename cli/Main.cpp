// The program `soca`.
#include <unistd.h>

#include <string>
#include <vector>

#include "cli/commands/Program.h"
#include "cli/terminal/Signals.h"

int main(int argumentCount, char** arguments) {
  soca::cli::Console console(STDOUT_FILENO, STDERR_FILENO);
  const int first = argumentCount > 0 ? 1 : 0;
  const auto exitCode = soca::cli::runProgram(
      std::vector<std::string>(arguments + first, arguments + argumentCount), console);
  soca::cli::endBySignalOf(exitCode);
  return static_cast<int>(exitCode);
}
