// Where the time of a run goes.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace fl::timing {

// What a thread is at. The platform itself knows of `read` and `analyse`; the rest is for clients.
enum class PhaseType { none, walk, read, analyse, rules, checks, git, diff, print, write };
constexpr std::size_t phaseCount = 10;

// Sums over all threads, in nanoseconds.
struct PhaseTime {
  std::int64_t wall = 0;
  std::int64_t processor = 0;
};

// From now on phases are timed. To be called before there are other threads.
void startTiming();

// What was spent in each phase so far, by the number of its type. A phase that lasts counts up to
// the last one that began or ended in it.
std::array<PhaseTime, phaseCount> timesOfPhases();

// As long as it lives, the thread's time counts for this phase, and not for the one around it.
// Costs nothing to speak of while phases are not timed.
class Phase {
 public:
  explicit Phase(PhaseType type) : outer_(isTiming() ? enter(type) : PhaseType::none) {}
  ~Phase() {
    if (isTiming()) enter(outer_);
  }
  Phase(const Phase&) = delete;
  Phase& operator=(const Phase&) = delete;

 private:
  friend void startTiming();

  static bool isTiming() { return timing.load(std::memory_order_relaxed); }
  // Gives the phase that the thread was in.
  static PhaseType enter(PhaseType type);

  static std::atomic<bool> timing;

  PhaseType outer_;
};

}  // namespace fl::timing
