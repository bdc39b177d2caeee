#include "cli/terminal/Progress.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "reports/text/TextLayout.h"

namespace soca::cli {
namespace {

constexpr auto firstUpdate = std::chrono::milliseconds(400);
constexpr auto updateInterval = std::chrono::milliseconds(125);
constexpr std::size_t barLength = 20;

// "0:07", "1:02:03"
std::string clockTime(double seconds) {
  const auto all = static_cast<std::size_t>(std::ceil(seconds));
  const std::size_t hours = all / 3600;
  const std::size_t minutes = all / 60 % 60;
  if (hours > 0) return fmt::format("{}:{:02}:{:02}", hours, minutes, all % 60);
  return fmt::format("{}:{:02}", minutes, all % 60);
}

std::string bar(double share) {
  const auto full = static_cast<std::size_t>(share * barLength);
  return " [" + std::string(full, '#') + std::string(barLength - full, '.') + ']';
}

}  // namespace

std::string formatProgress(const ProgressState& state, std::size_t width) {
  const double rate = state.seconds > 0 ? static_cast<double>(state.done) / state.seconds : 0;
  std::string text = groupDigits(state.done);
  // The parts that are omitted if there is no room.
  std::string tail;
  double share = 0;
  if (state.total) {
    const std::size_t total = std::max<std::size_t>({*state.total, state.done, 1});
    share = static_cast<double>(state.done) / static_cast<double>(total);
    // Numbers that grow have a fixed width, so that the rest of the line does not move.
    const std::string all = groupDigits(total);
    text = fmt::format("{:>{}} of {} {} {:3}%", text, all.size(), all, state.things,
                       static_cast<int>(share * 100));
    if (rate > 0) tail = clockTime(static_cast<double>(total - state.done) / rate) + " left";
  } else {
    text += fmt::format(" {}", state.things);
  }
  if (rate >= 1) {
    tail = fmt::format("{}/s{}{}", groupDigits(static_cast<std::size_t>(rate)),
                       tail.empty() ? "" : "  ", tail);
  }
  if (text.size() > width) return text.substr(0, width);
  if (tail.empty() || text.size() + 2 + tail.size() > width) return text;
  if (state.total && text.size() + barLength + 5 + tail.size() <= width) text += bar(share);
  return text + "  " + tail;
}

Progress::Progress(Console* console, std::string_view things, Clock::time_point now)
    : console_(console),
      things_(things),
      isShown_(console->hasStatusLine()),
      start_(now),
      nextUpdate_(now + firstUpdate) {}

Progress::~Progress() { console_->clearStatus(); }

void Progress::advance(Clock::time_point now) {
  ++done_;
  if (!isShown_ || now < nextUpdate_) return;
  nextUpdate_ = now + updateInterval;
  ProgressState state{.things = things_, .done = done_, .total = std::nullopt, .seconds = 0};
  if (const std::size_t total = total_; total > 0) state.total = total;
  state.seconds = std::chrono::duration<double>(now - start_).count();
  // The last column stays empty, because some terminals begin a new line after it.
  console_->showStatus(formatProgress(state, console_->width() - 1));
}

}  // namespace soca::cli
