// Kills the program repeatedly at random moments, on a tree of classes.
//
// A normal test run makes a few kills on few files. KILLS=200 and FILES=1000 in the environment of
// the test make the long form; SEED repeats one.
#include <fcntl.h>
#include <fmt/core.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Files = std::map<std::string, std::string>;

unsigned numberIn(const char* variable, unsigned otherwise) {
  const char* value = std::getenv(variable);
  return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

class KillTest : public ::testing::Test {
 protected:
  KillTest() {
    for (unsigned i = 0; i < numberIn("FILES", 200); ++i) {
      const std::string name = fmt::format("C{}", i);
      const std::string file = fmt::format("p{}/{}.vlm", i % 17, name);
      space_.write(file, outdatedClass(name));
      ::chmod((space_.path() / file).c_str(), 0600 + i % 0100);
      const timespec times[] = {{i, 0}, {1'000'000'000 + i, 1 + i}};
      ::utimensat(AT_FDCWD, (space_.path() / file).c_str(), times, 0);
    }
    old_ = space_.readAll();
    oldStates_ = states();
    new_ = updated();
  }

  // Permissions and times of change.
  Files states() const {
    Files states;
    for (const auto& [name, bytes] : old_) {
      struct stat status = {};
      ::stat((space_.path() / name).c_str(), &status);
      states[name] =
          fmt::format("{:o} {}.{}", status.st_mode, status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    }
    return states;
  }

  // The tree after an update; also measures the duration of the update and the undo.
  Files updated() {
    const auto start = Clock::now();
    EXPECT_EQ(space_.soca({"update", "--write", "-q"}).exitCode, 0);
    updateTime_ = Clock::now() - start;
    auto files = space_.readAll();
    const auto undoStart = Clock::now();
    EXPECT_EQ(space_.soca({"undo"}).exitCode, 0);
    undoTime_ = Clock::now() - undoStart;
    EXPECT_EQ(space_.readAll(), old_);
    return files;
  }

  fs::path runs() const { return space_.statePath() / "soca/runs"; }
  std::size_t runCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(runs()), {}));
  }

  // Kills the program some time after its start, or, in half of the cases, after it has made a
  // journal, so that it is killed while writing too. Returns whether it was killed before it
  // finished.
  bool kill(const std::vector<std::string>& arguments, Clock::duration time, bool waitsForJournal) {
    const auto before = runCount();
    const pid_t process = space_.start(arguments);
    int status = 0;
    while (waitsForJournal && runCount() == before) {
      if (::waitpid(process, &status, WNOHANG) == process) return false;
    }
    std::uniform_real_distribution<double> part(0, waitsForJournal ? 0.6 : 1.1);
    std::this_thread::sleep_for(time * part(random_));
    ::kill(process, SIGKILL);
    ::waitpid(process, &status, 0);
    return WIFSIGNALED(status);
  }

  // Each file is the old or the new one, with its permissions. Returns the number of new ones.
  std::size_t expectWholeFiles() const {
    const auto files = space_.readAll();
    const auto now = states();
    std::size_t count = 0;
    for (const auto& [name, bytes] : old_) {
      const bool isNew = files.at(name) == new_.at(name);
      EXPECT_TRUE(isNew || files.at(name) == bytes) << name << " is damaged";
      EXPECT_EQ(now.at(name).substr(0, 6), oldStates_.at(name).substr(0, 6)) << name;
      if (isNew) ++count;
    }
    return count;
  }

  const Workspace space_;
  Files old_;
  Files oldStates_;
  Files new_;
  Clock::duration updateTime_{};
  Clock::duration undoTime_{};
  std::mt19937 random_{numberIn("SEED", 1)};
};

TEST_F(KillTest, EachFileIsWholeAndTheNextRunRepairs) {
  const unsigned kills = numberIn("KILLS", 10);
  unsigned killed = 0;
  unsigned halfWay = 0;
  // More of them until one was killed while it wrote.
  for (unsigned i = 0; (i < kills || (halfWay == 0 && i < 10 * kills)) && !HasFailure(); ++i) {
    SCOPED_TRACE(i);
    // Otherwise the limit of kept journals would keep their number constant.
    for (const auto& run : fs::directory_iterator(runs())) fs::remove_all(run);
    killed += kill({"update", "--write", "-q"}, updateTime_, i % 2 == 0) ? 1 : 0;
    const std::size_t count = expectWholeFiles();
    if (count > 0 && count < old_.size()) ++halfWay;
    if (i % 4 == 3) {
      const auto repaired = space_.soca({"undo"});
      EXPECT_TRUE(repaired.exitCode == 0 || count == 0) << repaired.err;
      EXPECT_EQ(space_.readAll(), old_);
      EXPECT_EQ(states(), oldStates_);
    }
    const auto again = space_.soca({"update", "--write", "-q"});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(space_.readAll(), new_);

    killed += kill({"undo"}, undoTime_, false) ? 1 : 0;
    const std::size_t left = expectWholeFiles();
    if (left > 0 && left < old_.size()) ++halfWay;
    space_.soca({"undo"});
    EXPECT_EQ(space_.readAll(), old_);
    EXPECT_EQ(states(), oldStates_);
  }
  EXPECT_GT(killed, 0);
  EXPECT_GT(halfWay, 0);
  fmt::print("{} files; {} of {} runs were killed, {} of them between two files\n", old_.size(),
             killed, 2 * kills, halfWay);
}

}  // namespace
}  // namespace soca::testing
