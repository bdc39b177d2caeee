// Measures the time that a run spends in each phase.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace fl::timing {

// The activity of a thread. The platform itself uses `read` and `analyse`; the others are for
// clients.
enum class PhaseType { none, walk, read, analyse, rules, checks, git, diff, print, write };
constexpr std::size_t phaseCount = 10;

// Sums over all threads, in nanoseconds.
struct PhaseTime {
  std::int64_t wall = 0;
  std::int64_t processor = 0;
};

// Starts to time phases. To be called before any other thread starts.
void startTiming();

// The time spent in each phase so far, indexed by type. A current phase is counted up to the last
// nested phase that began or ended.
std::array<PhaseTime, phaseCount> timesOfPhases();

// During its life, the thread's time counts for this phase, and not for the outer one. Costs one
// relaxed load while phases are not timed.
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
  // Returns the previous phase of the thread.
  static PhaseType enter(PhaseType type);

  static std::atomic<bool> timing;

  PhaseType outer_;
};

}  // namespace fl::timing
