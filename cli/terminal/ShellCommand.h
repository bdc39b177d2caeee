// Runs a command of the user.
#pragma once

#include <optional>
#include <string>

#include "cli/terminal/Signals.h"

namespace soca::cli {

// Where the command prints what it prints to standard output.
enum class CommandOutputType { standardOutput, standardError };

struct CommandResult {
  // Why the command failed, as the rest of a sentence that begins with it; empty if it succeeded.
  std::string failure;
  // The first signal that was received while the command ran.
  std::optional<Interrupt> interrupt;
};

// Runs the command by the shell in the current folder, and waits for its end. It shares standard
// input and the terminal with the program, but neither its other files nor its handling of signals.
// A signal that was sent to the program alone is passed on to the shell.
CommandResult runInShell(const std::string& command, CommandOutputType output);

}  // namespace soca::cli
