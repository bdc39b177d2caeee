// Shows the progress of a run on a terminal.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cli/terminal/Console.h"

namespace soca::cli {

// The state of a run at one moment.
struct ProgressState {
  // The plural of the things that are counted.
  std::string_view things;
  std::size_t done = 0;
  // Empty at first.
  std::optional<std::size_t> total;
  double seconds = 0;
};

// One line of printable ASCII: count, share, bar, rate and remaining time, as far as they are known
// and fit into `width` columns.
std::string formatProgress(const ProgressState& state, std::size_t width);

// Updates the console's status line several times a second, but not at the beginning, so that a
// short run shows nothing. Does nothing if the console has no such line.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  // `console` must outlive the progress; `things` is a literal.
  Progress(Console* console, std::string_view things, Clock::time_point now = Clock::now());
  // Removes the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // May be called by any thread.
  void setTotal(std::size_t total) { total_ = total; }

  // Counts one more finished thing. Only for the thread that prints.
  void advance(Clock::time_point now = Clock::now());

 private:
  Console* console_;
  std::string_view things_;
  bool isShown_;
  Clock::time_point start_;
  Clock::time_point nextUpdate_;
  std::size_t done_ = 0;
  std::atomic<std::size_t> total_ = 0;
};

}  // namespace soca::cli
