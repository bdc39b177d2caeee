// Runs that are interrupted at every step, and the repair from their journals.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "files/writing/FileBatch.h"
#include "files/writing/Journal.h"
#include "files/writing/Repair.h"
#include "files/writing/Restore.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;
using StateType = Journal::StateType;

constexpr std::string_view oldText = "old text";
constexpr std::string_view newText = "new";
const GoesOn always = [] { return true; };

// Four files in two folders, and the user's store of runs.
class JournalTest : public ::testing::Test {
 protected:
  JournalTest() {
    int mode = 0600;
    for (const std::string& name : names_) {
      space_.write(name, oldText);
      ::chmod((space_.path() / name).c_str(), mode += 010);
      const timespec times[] = {{5, 6}, {1'000'000'000, 123'456'789}};
      ::utimensat(AT_FDCWD, (space_.path() / name).c_str(), times, 0);
    }
    start_ = look();
  }

  // Bytes, permissions and times of all files.
  std::map<std::string, std::string> look() const {
    auto files = space_.readAll();
    for (auto& [name, bytes] : files) {
      struct stat status = {};
      ::stat((space_.path() / name).c_str(), &status);
      bytes += " " + std::to_string(status.st_mode) + " " + std::to_string(status.st_mtim.tv_sec) +
               "." + std::to_string(status.st_mtim.tv_nsec);
    }
    return files;
  }

  void expectWholeFiles() const {
    for (const std::string& name : names_) {
      EXPECT_TRUE(space_.read(name) == oldText || space_.read(name) == newText) << name;
    }
  }

  std::vector<FileChange> changes() const {
    std::vector<FileChange> changes;
    for (const std::string& name : names_) {
      const std::string path = space_.path() / name;
      changes.push_back({path, *fl::filesystem::stampOf(path), digestOf(newText)});
    }
    return changes;
  }

  RunStore::Lock lock() {
    return *store_.lock([] {}, always);
  }
  BatchResult write(const GoesOn& goesOn) {
    return writeFiles(store_, lock(), changes(), [](auto) { return std::string(newText); }, goesOn);
  }
  RestoreResult undoLast(const GoesOn& goesOn) {
    const auto held = lock();
    Journal journal(store_.folderOf(store_.runs().back()));
    return undoRun(journal, journal.pending(), goesOn);
  }
  std::vector<RepairedRun> repair() { return repairRuns(store_, lock(), always); }
  StateType stateOfLast() const { return Journal(store_.folderOf(store_.runs().back())).state(); }

  const std::vector<std::string> names_ = {"a/A", "a/B", "b/C", "b/D"};
  const Workspace space_;
  std::map<std::string, std::string> start_;
  RunStore store_;
};

// Runs `work` in a process that dies at the step. Returns whether it reached the step.
bool diesAt(int step, const std::function<void(const GoesOn&)>& work) {
  const pid_t process = ::fork();
  if (process == 0) {
    work([&] { return step-- > 0 || (::_exit(9), true); });
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  return status != 0;
}

GoesOn stopAt(int step) {
  return [step]() mutable { return step-- > 0; };
}

TEST_F(JournalTest, ARunKilledAtAnyStepIsReverted) {
  int step = 0;
  while (diesAt(step, [&](const GoesOn& goesOn) { write(goesOn); })) {
    SCOPED_TRACE(step++);
    expectWholeFiles();
    EXPECT_EQ(repair().size(), 1);
    EXPECT_EQ(look(), start_);
    EXPECT_TRUE(repair().empty());
  }
  EXPECT_GT(step, 12);
  EXPECT_EQ(stateOfLast(), StateType::done);
  EXPECT_TRUE(undoLast(always).changed.empty());
  EXPECT_EQ(look(), start_);
}

TEST_F(JournalTest, AnUndoKilledAtAnyStepIsCompleted) {
  int step = 0;
  write(always);
  while (diesAt(step, [&](const GoesOn& goesOn) { undoLast(goesOn); })) {
    SCOPED_TRACE(step++);
    expectWholeFiles();
    EXPECT_EQ(repair().size(), 1);
    EXPECT_EQ(look(), start_);
    EXPECT_EQ(stateOfLast(), StateType::undone);
    write(always);
  }
  EXPECT_GT(step, 8);
  EXPECT_EQ(look(), start_);
}

TEST_F(JournalTest, ARunThatStopsAtAnyStepCanBeUndone) {
  for (int step = 0;; ++step) {
    SCOPED_TRACE(step);
    const auto result = write(stopAt(step));
    EXPECT_EQ(space_.readAll().size(), 4);
    for (std::size_t i = 0; i < names_.size(); ++i) {
      EXPECT_EQ(space_.read(names_[i]), result.isWritten[i] ? newText : oldText);
    }
    EXPECT_EQ(result.run != 0, result.writtenCount > 0);
    EXPECT_TRUE(repair().empty());
    if (result.run != 0) {
      // The undo is interrupted as well, and continues where it was.
      while (undoLast(stopAt(step % 7 + 1)).isCutShort && stateOfLast() != StateType::undone) {
        EXPECT_EQ(space_.readAll().size(), 4);
        undoLast(always);
      }
    }
    EXPECT_EQ(look(), start_);
    if (!result.isCutShort) break;
  }
}

TEST_F(JournalTest, TornJournals) {
  write(always);
  const fs::path folder = store_.folderOf(1);
  const auto copy = folder.string() + ".copy";
  fs::copy(folder, copy);
  const auto whole = fs::file_size(folder / "state");
  for (std::uintmax_t size = 0; size < whole; size += 9) {
    fs::resize_file(folder / "state", size);
    ASSERT_EQ(repair().size(), 1) << size;
    ASSERT_EQ(look(), start_) << size;
    ASSERT_EQ(stateOfLast(), StateType::undone) << size;
    fs::remove_all(folder);
    fs::copy(copy, folder);
    for (const std::string& name : names_) std::ofstream(space_.path() / name) << newText;
  }
  // The file `before` is complete before any file is changed: if it is torn, none was.
  for (std::uintmax_t size = fs::file_size(folder / "before"); size > 0;) {
    size -= std::min<std::uintmax_t>(size, 13);
    fs::resize_file(folder / "before", size);
    ASSERT_EQ(stateOfLast(), size > 0 ? StateType::damaged : StateType::notBegun) << size;
    fs::resize_file(folder / "state", 0);
    ASSERT_EQ(stateOfLast(), StateType::notBegun) << size;
    fs::copy(copy + "/state", folder / "state", fs::copy_options::overwrite_existing);
  }
  repair();
  EXPECT_TRUE(store_.runs().empty());
}

TEST_F(JournalTest, ACorruptOldTextIsNotRestored) {
  write(always);
  std::fstream file(store_.folderOf(1) + "/before");
  std::stringstream bytes;
  bytes << file.rdbuf();
  file.seekp(static_cast<std::streamoff>(bytes.str().find(oldText)));
  file << "bad" << std::flush;
  const auto result = undoLast(always);
  ASSERT_EQ(result.changed.size(), 1);
  EXPECT_NE(result.changed[0].reason.find("the disk has changed it"), std::string::npos);
  EXPECT_EQ(space_.read("a/A"), newText);
  EXPECT_EQ(result.restored.size(), 3);
}

TEST_F(JournalTest, TheNewestRunsAreKept) {
  write(always);
  undoLast(always);
  for (RunNumber run = 2; run < 24; ++run) fs::copy(store_.folderOf(1), store_.folderOf(run));
  write(always);
  auto runs = store_.runs();
  EXPECT_EQ(runs.size(), RunStore::mostRuns);
  EXPECT_EQ(runs.back(), 24);
  undoLast(always);
  fs::resize_file(store_.folderOf(10) + "/before", RunStore::mostBytes);
  write(always);
  runs = store_.runs();
  EXPECT_EQ(runs.front(), 11);
  EXPECT_EQ(runs.back(), 25);
}

TEST_F(JournalTest, EachStepCountsItsFiles) {
  std::string steps;
  const OnStep onStep = [&](StepType step, std::size_t count) {
    steps += "svr"[static_cast<int>(step)] + std::to_string(count);
  };
  auto list = changes();
  ASSERT_EQ(::chmod((space_.path() / names_[1]).c_str(), 0600), 0);
  const auto newBytes = [](auto) { return std::string(newText); };
  writeFiles(store_, lock(), list, newBytes, always, onStep);
  EXPECT_EQ(steps, "s4s4s4s4v3v3v3r3r3r3") << "one of the files changed meanwhile";
  steps.clear();
  Journal journal(store_.folderOf(1));
  undoRun(journal, journal.pending(), always, onStep);
  EXPECT_EQ(steps, "v3v3v3r3r3r3");
}

TEST_F(JournalTest, ARunWithALockIsNotTreatedAsInterrupted) {
  int steps = 0;
  write([&] {
    // For the lock, another store is the same as another process.
    EXPECT_TRUE(RunStore().isLocked());
    EXPECT_FALSE(RunStore().lock([] {}, stopAt(1)).has_value());
    return ++steps > 0;
  });
  EXPECT_FALSE(RunStore().isLocked());
  EXPECT_EQ(stateOfLast(), StateType::done);
}

}  // namespace
}  // namespace soca::testing
