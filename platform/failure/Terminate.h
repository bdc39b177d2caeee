// Ends the process when an internal invariant does not hold.
#pragma once

namespace foundation::core::diag {

// Called on the failing thread before the message is printed, with the arguments of `terminate`. It
// may end the process itself; when it returns, `terminate` continues.
using TerminateHandler = void (*)(const char* message, const char* file, int line,
                                  const char* function);

// Sets the handler of the process, null for none, and returns the old one.
TerminateHandler setTerminateHandler(TerminateHandler handler);

// Calls the handler, prints "file:line: function: message" to standard error, and aborts.
[[noreturn]] void terminate(const char* message, const char* file, int line,
                            const char* function) noexcept;

}  // namespace foundation::core::diag
