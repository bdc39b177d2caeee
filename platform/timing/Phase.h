// Measures the time that a run spends in each phase.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace fl::timing {

// In nanoseconds.
struct PhaseTime {
  std::int64_t wall = 0;
  std::int64_t processor = 0;
};

// A kind of work, with the time that all threads have spent on it. The platform has the two below;
// clients add their own. Must live as long as the process.
class PhaseType {
 public:
  // `name` must be a literal.
  explicit constexpr PhaseType(std::string_view name) : name_(name) {}

  std::string_view name() const { return name_; }
  // The time spent so far. A current phase is counted up to the last nested phase that began or
  // ended.
  PhaseTime time() const { return {wall_, processor_}; }
  void add(const PhaseTime& time) {
    wall_ += time.wall;
    processor_ += time.processor;
  }

 private:
  std::string_view name_;
  std::atomic<std::int64_t> wall_ = 0;
  std::atomic<std::int64_t> processor_ = 0;
};

extern PhaseType readPhase;
extern PhaseType analysePhase;

// Starts to time phases. To be called before any other thread starts.
void startTiming();

// During its life, the thread's time counts for this phase, and not for the outer one. Costs one
// branch while phases are not timed.
class Phase {
 public:
  explicit Phase(PhaseType& type) : outer_(isTiming() ? enter(&type) : nullptr) {}
  ~Phase() {
    if (isTiming()) enter(outer_);
  }
  Phase(const Phase&) = delete;
  Phase& operator=(const Phase&) = delete;

 private:
  friend void startTiming();

  static bool isTiming() { return timing.load(std::memory_order_relaxed); }
  // Returns the previous phase of the thread; null if there was none.
  static PhaseType* enter(PhaseType* type);

  static std::atomic<bool> timing;

  PhaseType* outer_;
};

}  // namespace fl::timing
