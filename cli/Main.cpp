// The program `soca`.
#include <unistd.h>

#include <string>
#include <vector>

#include "cli/commands/Program.h"

int main(int argumentCount, char** arguments) {
  soca::cli::Console console(STDOUT_FILENO, STDERR_FILENO);
  const int first = argumentCount > 0 ? 1 : 0;
  return static_cast<int>(soca::cli::runProgram(
      std::vector<std::string>(arguments + first, arguments + argumentCount), console));
}
