#include "platform/timing/Phase.h"

#include <ctime>
#include <utility>

namespace fl::timing {

constinit PhaseType readPhase("read");
constinit PhaseType analysePhase("analyse");

namespace {

std::int64_t nanosecondsOf(clockid_t clock) {
  timespec time = {};
  ::clock_gettime(clock, &time);
  return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

PhaseTime timesNow() {
  return {nanosecondsOf(CLOCK_MONOTONIC), nanosecondsOf(CLOCK_THREAD_CPUTIME_ID)};
}

// The current phase of a thread, and the thread's clocks at its start.
struct Current {
  PhaseType* type = nullptr;
  PhaseTime start;
};

}  // namespace

std::atomic<bool> Phase::timing = false;

PhaseType* Phase::enter(PhaseType* type) {
  thread_local Current current;
  const PhaseTime now = timesNow();
  if (current.type != nullptr) {
    current.type->add({now.wall - current.start.wall, now.processor - current.start.processor});
  }
  current.start = now;
  return std::exchange(current.type, type);
}

void startTiming() { Phase::timing = true; }

}  // namespace fl::timing
