// A clean end when the user or the system wants the program to stop.
#pragma once

#include "reports/ExitCodes.h"

namespace soca::cli {

// From now on the first SIGINT or SIGTERM is only noted; a second one ends the process at once.
// A file that would exceed the limit on its size is an error of the write, and no signal.
void catchInterrupts();

// Whether one came. What goes on for long asks now and then, and stops.
bool wasInterrupted();

// The exit code for the signal that came.
ExitCodeType interruptExitCode();

// From now on a reader of the output that goes away does not end the process.
void ignoreBrokenPipes();

}  // namespace soca::cli
