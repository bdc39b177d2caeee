#include "cli/terminal/Signals.h"

#include <atomic>
#include <csignal>

namespace soca::cli {
namespace {

constexpr int firstSignalCode = 128;

std::atomic<int> caughtSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may write to it");

std::atomic<bool> isFromProcess = false;

// What the kernel itself sends has a positive code.
extern "C" void noteSignal(int signal, siginfo_t* info, void*) {
  int none = 0;
  if (caughtSignal.compare_exchange_strong(none, signal)) isFromProcess = info->si_code <= 0;
}

// Without SA_RESTART, so that a blocked write does not keep the program alive.
void catchSignal(int signal, unsigned flags) {
  struct sigaction old = {};
  if (sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_IGN) return;
  struct sigaction action = {};
  action.sa_sigaction = noteSignal;
  action.sa_flags = static_cast<int>(flags | SA_SIGINFO);
  sigaction(signal, &action, nullptr);
}

void catchAll(unsigned flags) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) catchSignal(signal, flags);
}

}  // namespace

void catchInterrupts() {
  catchAll(SA_RESETHAND);
  std::signal(SIGXFSZ, SIG_IGN);
}

void catchRepeatedInterrupts() { catchAll(0); }

// All later writes to the pipe fail, too.
void catchBrokenPipes() { catchSignal(SIGPIPE, 0); }

bool wasInterrupted() { return caughtSignal != 0; }

ExitCodeType interruptExitCode() { return ExitCodeType{firstSignalCode + caughtSignal}; }

std::optional<Interrupt> takeInterrupt() {
  const Interrupt interrupt = {caughtSignal, isFromProcess};
  if (interrupt.signal == 0) return std::nullopt;
  if (interrupt.signal != SIGPIPE) caughtSignal = 0;
  return interrupt;
}

ExitCodeType exitCodeOf(const Interrupt& interrupt) {
  return ExitCodeType{firstSignalCode + interrupt.signal};
}

void endBySignalOf(ExitCodeType exitCode) {
  if (!isOfSignal(exitCode)) return;
  const int signal = static_cast<int>(exitCode) - firstSignalCode;
  std::signal(signal, SIG_DFL);
  // It may have been blocked when the program started.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, signal);
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  std::raise(signal);
}

}  // namespace soca::cli
