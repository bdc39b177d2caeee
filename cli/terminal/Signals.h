// An orderly exit after a signal.
#pragma once

#include "reports/ExitCodes.h"

namespace soca::cli {

// After this the first SIGINT or SIGTERM is only recorded; a second one ends the process
// immediately. Exceeding the limit of the file size becomes an error of the write instead of a
// signal.
void catchInterrupts();

// Whether a signal was received. Long operations check this at intervals and stop.
bool wasInterrupted();

// The exit code for the received signal.
ExitCodeType interruptExitCode();

// After this, a closed reader of the output does not end the process.
void ignoreBrokenPipes();

}  // namespace soca::cli
