#include "cli/terminal/Progress.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>

#include "cli/update/WriteProgress.h"
#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

namespace soca::cli {
namespace {

using std::chrono::milliseconds;

TEST(Progress, FitsTheLine) {
  const ProgressState unknown{"classes", 4321, std::nullopt, 2};
  const ProgressState known{"classes", 4321, 12345, 2};
  const struct {
    ProgressState state;
    std::size_t width;
    const char* line;
  } table[] = {
      {unknown, 79, "4,321 classes  2,160/s"},
      {unknown, 15, "4,321 classes"},
      {known, 79, " 4,321 of 12,345 classes  35% [#######.............]  2,160/s  0:04 left"},
      {known, 72, " 4,321 of 12,345 classes  35% [#######.............]  2,160/s  0:04 left"},
      {known, 71, " 4,321 of 12,345 classes  35%  2,160/s  0:04 left"},
      {known, 30, " 4,321 of 12,345 classes  35%"},
      {known, 9, " 4,321 of"},
      {{"classes", 3, 30'000, 2}, 50, "     3 of 30,000 classes   0%  1/s  5:33:18 left"},
      // Files were created after they were counted.
      {{"classes", 3, 2, 0}, 40, "3 of 3 classes 100%"},
      {{"classes", 0, 0, 0}, 40, "0 of 1 classes   0%"},
  };
  for (const auto& row : table) EXPECT_EQ(formatProgress(row.state, row.width), row.line);
}

// The output to a terminal of 60 columns.
std::string sentToTerminal(const char* type, const std::function<void(Console&)>& run) {
  winsize size = {.ws_row = 24, .ws_col = 60, .ws_xpixel = 0, .ws_ypixel = 0};
  int controller = -1;
  int terminal = -1;
  if (::openpty(&controller, &terminal, nullptr, nullptr, &size) != 0) return "no terminal";
  ::setenv("TERM", type, 1);
  Console console(terminal, terminal);
  run(console);
  console.finish();
  std::string text(4096, '\0');
  console.printError("$");
  for (std::size_t length = 0; length < text.size();) {
    const ssize_t count = ::read(controller, text.data() + length, text.size() - length);
    length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    if (count <= 0 || text[length - 1] == '$') text.resize(length - 1);
  }
  ::close(terminal);
  ::close(controller);
  return text;
}

TEST(Progress, StaysBelowOtherOutput) {
  const auto run = [](Console& console) {
    const Progress::Clock::time_point start;
    Progress progress(&console, "files", start);
    console.print("a\n");
    // Nothing at first, and later at intervals.
    for (const int now : {0, 399, 400, 401, 500, 525}) progress.advance(start + milliseconds(now));
    console.complain("b");
    progress.setTotal(8);
    progress.advance(start + milliseconds(1000));
    console.print("c\n");
    progress.advance(start + milliseconds(2000));
  };
  EXPECT_EQ(sentToTerminal("xterm", run),
            "a\r\n"
            "\r3 files  7/s\x1b[K\r6 files  11/s\x1b[K\r\x1b[K"
            "soca: b\r\n"
            "\r6 files  11/s\x1b[K"
            "\r7 of 8 files  87% [#################...]  7/s  0:01 left\x1b[K\r\x1b[K"
            "c\r\n"
            "\r7 of 8 files  87% [#################...]  7/s  0:01 left\x1b[K"
            "\r8 of 8 files 100% [####################]  4/s  0:00 left\x1b[K\r\x1b[K");
  EXPECT_EQ(sentToTerminal("dumb", run), "a\r\nsoca: b\r\nc\r\n");
}

TEST(Progress, EachStepOfWritingHasItsOwn) {
  const auto run = [](Console& console) {
    const Progress::Clock::time_point start;
    WriteProgress progress(&console, "files written");
    for (const int now : {0, 200, 400}) {
      progress.advance(StepType::staging, 3, start + milliseconds(now));
    }
    // A line that is not replaced by that of the next step is removed.
    progress.advance(StepType::replacing, 2, start + milliseconds(600));
    progress.advance(StepType::replacing, 2, start + milliseconds(1100));
  };
  EXPECT_EQ(sentToTerminal("xterm", run),
            "\r3 of 3 files prepared 100%  7/s  0:00 left\x1b[K\r\x1b[K"
            "\r2 of 2 files written 100%  4/s  0:00 left\x1b[K\r\x1b[K");
}

// Sees what happens to the files of a folder.
class FolderWatch {
 public:
  FolderWatch(const std::filesystem::path& folder, std::uint32_t event) {
    ::inotify_add_watch(watch_, folder.c_str(), event);
  }
  ~FolderWatch() { ::close(watch_); }
  FolderWatch(const FolderWatch&) = delete;
  FolderWatch& operator=(const FolderWatch&) = delete;

  // Waits until the event has happened a few times.
  void wait() const {
    std::array<char, 4096> events;
    pollfd waiting = {.fd = watch_, .events = POLLIN, .revents = 0};
    for (int i = 0; i < 3 && ::poll(&waiting, 1, 10'000) == 1; ++i) {
      if (::read(watch_, events.data(), sizeof(inotify_event) + 64) <= 0) return;
    }
  }

 private:
  int watch_ = ::inotify_init1(IN_CLOEXEC);
};

// Runs the program on a terminal, and stops it for a while after the event, so that what it does
// then takes long. Returns its output.
std::string outputWithPause(const testing::Workspace& space, std::vector<std::string> command,
                            std::uint32_t event) {
  const FolderWatch watch(space.path(), event);
  testing::TerminalRun run(space, std::move(command));
  watch.wait();
  ::kill(run.process(), SIGSTOP);
  std::this_thread::sleep_for(milliseconds(500));
  ::kill(run.process(), SIGCONT);
  run.finish();
  return run.output();
}

TEST(Progress, IsShownWhileFilesAreWrittenAndPutBack) {
  const testing::Workspace space;
  for (int i = 0; i < 300; ++i) {
    const std::string name = "C" + std::to_string(i);
    space.write(name + ".vlm",
                "classdef " + name + " < velum.System & velum.system.mixin.Propagates\nend\n");
  }
  const std::vector<std::string> compute = {testing::programPath(), "update", "-q"};
  const std::vector<std::string> write = {testing::programPath(), "update", "--write", "-q"};
  const std::vector<std::string> undo = {testing::programPath(), "undo"};
  // The program may have finished the step before it is stopped.
  const auto isShown = [&](const char* what, const auto& command, std::uint32_t event) {
    for (int attempts = 0; attempts < 10; ++attempts) {
      if (&command == &undo) space.soca({"update", "--write"});
      const std::string output = outputWithPause(space, command, event);
      if (&command == &write) space.soca({"undo"});
      if (output.find(what) != std::string::npos) return true;
    }
    return false;
  };
  EXPECT_TRUE(isShown(" classes ", compute, IN_CLOSE_NOWRITE));
  EXPECT_TRUE(isShown(" of 300 files prepared ", write, IN_CREATE));
  EXPECT_TRUE(isShown(" of 300 files prepared ", undo, IN_CREATE));
}

}  // namespace
}  // namespace soca::cli
