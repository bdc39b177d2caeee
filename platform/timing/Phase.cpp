#include "platform/timing/Phase.h"

#include <ctime>
#include <utility>

namespace fl::timing {

namespace {

struct Sums {
  std::atomic<std::int64_t> wall = 0;
  std::atomic<std::int64_t> processor = 0;
};

std::array<Sums, phaseCount>& sums() {
  static std::array<Sums, phaseCount> instance;
  return instance;
}

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
  PhaseType type = PhaseType::none;
  PhaseTime start;
};

}  // namespace

std::atomic<bool> Phase::timing = false;

PhaseType Phase::enter(PhaseType type) {
  thread_local Current current;
  const PhaseTime now = timesNow();
  if (current.type != PhaseType::none) {
    Sums& sum = sums()[static_cast<std::size_t>(current.type)];
    sum.wall += now.wall - current.start.wall;
    sum.processor += now.processor - current.start.processor;
  }
  current.start = now;
  return std::exchange(current.type, type);
}

void startTiming() { Phase::timing = true; }

std::array<PhaseTime, phaseCount> timesOfPhases() {
  std::array<PhaseTime, phaseCount> times;
  for (std::size_t i = 0; i < phaseCount; ++i) times[i] = {sums()[i].wall, sums()[i].processor};
  return times;
}

}  // namespace fl::timing
