#include "cli/terminal/Signals.h"

#include <atomic>
#include <csignal>

namespace soca::cli {
namespace {

std::atomic<int> caughtSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may write to it");

extern "C" void noteSignal(int signal) { caughtSignal = signal; }

}  // namespace

void catchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = noteSignal;
  // No SA_RESTART, so that a blocked write does not keep the program alive.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM}) {
    // A signal that was ignored when the program started stays ignored.
    struct sigaction old = {};
    if (sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) continue;
    sigaction(signal, &action, nullptr);
  }
  std::signal(SIGXFSZ, SIG_IGN);
}

bool wasInterrupted() { return caughtSignal != 0; }

ExitCodeType interruptExitCode() {
  return caughtSignal == SIGTERM ? ExitCodeType::terminated : ExitCodeType::interrupted;
}

void ignoreBrokenPipes() { std::signal(SIGPIPE, SIG_IGN); }

}  // namespace soca::cli
