// What a run took: time, by what it was spent on, and memory.
#pragma once

#include <chrono>
#include <string>

namespace soca::cli {

// Counts from its making. To be made before there are other threads.
class Stats {
 public:
  Stats();

  // Some lines: the whole run, then each phase with the sums over all threads.
  std::string text() const;

 private:
  std::chrono::steady_clock::time_point start_;
};

}  // namespace soca::cli
