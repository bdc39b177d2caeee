#include "cli/update/Stats.h"

#include <fmt/core.h>
#include <sys/resource.h>

#include <array>

#include "reports/outcomes/Phases.h"

namespace soca::cli {
namespace {

// In the order in which they are printed.
constexpr std::array<const fl::timing::PhaseType*, 9> phases = {&walkPhase,
                                                                &fl::timing::readPhase,
                                                                &fl::timing::analysePhase,
                                                                &rulesPhase,
                                                                &checksPhase,
                                                                &gitPhase,
                                                                &diffPhase,
                                                                &printPhase,
                                                                &writePhase};

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
  for (const fl::timing::PhaseType* phase : phases) {
    const fl::timing::PhaseTime time = phase->time();
    if (time.wall == 0) continue;
    text += fmt::format("  {:<8} {:>8.2f}      {:>8.2f}\n", phase->name(), secondsOf(time.wall),
                        secondsOf(time.processor));
  }
  return text;
}

}  // namespace soca::cli
