#include "cli/commands/Stats.h"

#include <fmt/core.h>
#include <sys/resource.h>

#include <array>
#include <string_view>

#include "platform/timing/Phase.h"

namespace soca::cli {
namespace {

// In the order of PhaseType, without its first.
constexpr std::array<std::string_view, fl::timing::phaseCount - 1> phaseNames = {
    "walk", "read", "analyse", "rules", "checks", "git", "diff", "print", "write"};

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double secondsOf(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e9; }

}  // namespace

Stats::Stats() : start_(std::chrono::steady_clock::now()) { fl::timing::startTiming(); }

std::string Stats::text() const {
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start_;
  rusage usage = {};
  ::getrusage(RUSAGE_SELF, &usage);
  std::string text = fmt::format(
      "  took {:.2f} s, {:.2f} s of processor time, and at most {:.1f} MiB of memory\n"
      "  phase      time s   processor s   (sums over all threads)\n",
      wall.count(), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
      static_cast<double>(usage.ru_maxrss) / 1024);
  const auto times = fl::timing::timesOfPhases();
  for (std::size_t i = 0; i < phaseNames.size(); ++i) {
    const fl::timing::PhaseTime& time = times[i + 1];
    if (time.wall == 0) continue;
    text += fmt::format("  {:<8} {:>8.2f}      {:>8.2f}\n", phaseNames[i], secondsOf(time.wall),
                        secondsOf(time.processor));
  }
  return text;
}

}  // namespace soca::cli
