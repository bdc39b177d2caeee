// An orderly end after a signal.
#pragma once

#include <optional>

#include "reports/ExitCodes.h"

namespace soca::cli {

// After this the first SIGINT, SIGTERM or SIGHUP is only recorded; a second one of the same kind
// ends the process immediately. A signal that was ignored when the program started stays ignored.
// Exceeding the limit of the file size becomes an error of the write instead of a signal.
void catchInterrupts();

// The same for the time in which a command of the user handles the signals: none of them ends the
// process, however often it comes.
void catchRepeatedInterrupts();

// After this a closed reader of the output is recorded like an interrupt. Otherwise it ends the
// process immediately, which is right as long as there is nothing to clean up.
void catchBrokenPipes();

// Whether a signal was received. Long operations check this at intervals and stop.
bool wasInterrupted();

// The exit code for the first received signal.
ExitCodeType interruptExitCode();

// A received signal.
struct Interrupt {
  int signal = 0;
  // Whether a process sent it; otherwise it came from a terminal, and all programs there got it.
  bool isFromProcess = false;
};

// Returns the first received signal and forgets it, for work that must follow an interrupt; the
// next one is recorded in its place if it is caught. A closed reader stays recorded, since it stays
// closed.
std::optional<Interrupt> takeInterrupt();

// The exit code for the signal.
ExitCodeType exitCodeOf(const Interrupt& interrupt);

// Ends the process by the signal of the exit code, if it is of one: a shell stops its loops only
// after a program that the signal itself has ended.
void endBySignalOf(ExitCodeType exitCode);

}  // namespace soca::cli
