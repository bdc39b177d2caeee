// Ends the process when a promise that the code makes to itself is broken.
#pragma once

namespace foundation::core::diag {

// Called on the failing thread before the message is printed, with what `terminate` was given. It
// may end the process itself; when it returns, `terminate` goes on.
using TerminateHandler = void (*)(const char* message, const char* file, int line,
                                  const char* function);

// Sets the handler of the process, null for none, and returns the old one.
TerminateHandler setTerminateHandler(TerminateHandler handler);

// Calls the handler, prints "file:line: function: message" to standard error, and aborts.
[[noreturn]] void terminate(const char* message, const char* file, int line,
                            const char* function) noexcept;

}  // namespace foundation::core::diag
