// Runs a program on a pseudo-terminal, as from a shell.
#pragma once

#include <sys/types.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/cli/ProgramRunner.h"

namespace soca::testing {

// The program has the terminal for all of its streams and gets the signals of its keys. The
// terminal neither echoes nor changes what is written to it.
class TerminalRun {
 public:
  // Starts the command in the folder of the workspace.
  TerminalRun(const Workspace& space, std::vector<std::string> command);
  // Kills the program if it still runs.
  ~TerminalRun();
  TerminalRun(const TerminalRun&) = delete;
  TerminalRun& operator=(const TerminalRun&) = delete;

  pid_t process() const { return process_; }
  void type(std::string_view keys) const;
  // Reads until the output contains the text. False if it ends before, or no output comes for long.
  bool waitFor(std::string_view text);
  // Reads what has been printed so far. Whether the text is part of the output.
  bool hasPrinted(std::string_view text);
  // Reads all output, and returns the exit code as in ProgramResult.
  int finish();
  // What was read so far.
  const std::string& output() const { return output_; }

 private:
  // False if there is no output within the time, or if it ends.
  bool readMore(int milliseconds);

  pid_t process_ = 0;
  int terminal_ = -1;
  std::string output_;
};

// The whole output of the program on a terminal, both streams.
std::string outputOnTerminal(const Workspace& space, std::vector<std::string> arguments);

}  // namespace soca::testing
