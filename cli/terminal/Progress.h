// How far a run has come, for a person at a terminal.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "cli/terminal/Console.h"

namespace soca::cli {

// What is known at some moment.
struct ProgressState {
  // What is counted, in the plural.
  std::string_view things;
  std::size_t done = 0;
  // Not known at first.
  std::optional<std::size_t> total;
  double seconds = 0;
};

// One line of printable ASCII: count, share, bar, rate and time left, as far as they are known and
// fit into `width` columns.
std::string formatProgress(const ProgressState& state, std::size_t width);

// Keeps the console's status line up to date, a few times a second, and not in the first moment, so
// that a short run shows nothing. Where the console has no such line, nothing happens.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  // `console` must outlive the progress; `things` is a literal.
  Progress(Console* console, std::string_view things, Clock::time_point now = Clock::now());
  // Takes the line away.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // May be called by any thread.
  void setTotal(std::size_t total) { total_ = total; }

  // One thing more is done. Only for the thread that prints.
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
