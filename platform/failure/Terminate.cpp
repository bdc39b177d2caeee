#include "platform/failure/Terminate.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace foundation::core::diag {
namespace {

std::atomic<TerminateHandler> currentHandler = nullptr;

}  // namespace

TerminateHandler setTerminateHandler(TerminateHandler handler) {
  return currentHandler.exchange(handler);
}

void terminate(const char* message, const char* file, int line, const char* function) noexcept {
  // Removed first, so that a failure in the handler does not call the handler again.
  if (const TerminateHandler handler = currentHandler.exchange(nullptr)) {
    handler(message, file, line, function);
  }
  std::fprintf(stderr, "%s:%d: %s: %s\n", file, line, function, message);
  std::fflush(stderr);
  std::abort();
}

}  // namespace foundation::core::diag
