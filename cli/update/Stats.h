// The cost of a run: time by phase, and memory.
#pragma once

#include <chrono>
#include <string>

namespace soca::cli {

// Measures from its construction, which must precede the start of other threads.
class Stats {
 public:
  Stats();

  // Several lines: the whole run, then each phase with the sums over all threads.
  std::string text() const;

 private:
  std::chrono::steady_clock::time_point start_;
};

}  // namespace soca::cli
