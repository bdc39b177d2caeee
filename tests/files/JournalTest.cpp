// Runs that are interrupted at every step, and the repair from their journals.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

#include "files/writing/FileBatch.h"
#include "files/writing/Journal.h"
#include "files/writing/RecordFile.h"
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

unsigned numberIn(const char* variable, unsigned otherwise) {
  const char* value = std::getenv(variable);
  return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

std::string bytesOf(const fs::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path).rdbuf();
  return bytes.str();
}

// Many file systems flush a file that is emptied, so this makes a new one.
void replaceFile(const fs::path& path, const std::string& bytes) {
  fs::remove(path);
  std::ofstream(path) << bytes;
}

// The bytes with a flipped bit, or a part of them.
std::string damage(std::string bytes, std::mt19937& random) {
  const std::size_t place = random() % bytes.size();
  if (random() % 2 == 0) return bytes.substr(0, place);
  bytes[place] = static_cast<char>(bytes[place] ^ (1 << random() % 8));
  return bytes;
}

// Four files in two folders, and the user's store of runs.
class JournalTest : public ::testing::Test {
 public:
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
  // Without numbers, all files.
  RestoreResult undoLast(const GoesOn& goesOn, const FileNumbers& numbers = {}) {
    const auto held = lock();
    Journal journal(store_.folderOf(store_.runs().back()));
    return undoRun(journal, numbers.empty() ? journal.pending() : numbers, goesOn);
  }
  RestoreResult undoAll(const GoesOn& goesOn) { return undoLast(goesOn); }

  // Does the work in a process that is killed at the step.
  template <class Work>
  void dieAt(int step, const Work& work) {
    ASSERT_TRUE(diesAt(step, [&](const GoesOn& goesOn) { std::invoke(work, *this, goesOn); }));
  }
  std::vector<RepairedRun> repair() { return repairRuns(store_, lock(), always); }
  StateType stateOfLast() const { return Journal(store_.folderOf(store_.runs().back())).state(); }

  const std::vector<std::string> names_ = {"a/A", "a/B", "b/C", "b/D"};
  const Workspace space_;
  std::map<std::string, std::string> start_;
  RunStore store_;
};

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

// The kinds of runs whose journals are kept.
struct KeptRun {
  const char* what;
  std::function<void(JournalTest&)> make;
};

TEST_F(JournalTest, DamageIsReportedAndChangesNothing) {
  const KeptRun kinds[] = {
      {"done", [](JournalTest& test) { test.write(always); }},
      {"interrupted", [](JournalTest& test) { test.dieAt(10, &JournalTest::write); }},
      {"partly undone",
       [](JournalTest& test) {
         test.write(always);
         test.undoLast(always, {0, 2});
       }},
      {"interrupted in an undo",
       [](JournalTest& test) {
         test.write(always);
         test.dieAt(6, &JournalTest::undoAll);
       }},
  };
  const unsigned damages = numberIn("DAMAGES", 1000);
  std::mt19937 random(numberIn("SEED", 1));
  write(always);
  undoLast(always);
  const fs::path folder = store_.folderOf(1);
  // With so many newer runs, only the damaged one could be pruned.
  const auto forOthers = [&](const auto& use) {
    for (RunNumber run = 2; run < 2 + RunStore::mostRuns; ++run) use(store_.folderOf(run));
  };
  forOthers([&](const std::string& other) { fs::copy(folder, other + ".away"); });
  for (const KeptRun& kind : kinds) {
    SCOPED_TRACE(kind.what);
    fs::remove_all(folder);
    kind.make(*this);
    const auto files = look();
    const auto before = bytesOf(folder / "before");
    const auto state = bytesOf(folder / "state");
    for (unsigned i = 0; i < damages / std::size(kinds) && !HasFailure(); ++i) {
      const bool isState = i % 2 == 0;
      const fs::path path = folder / (isState ? "state" : "before");
      const std::string damaged = damage(isState ? state : before, random);
      replaceFile(path, damaged);
      const auto found = findDamagedRuns(store_);
      ASSERT_EQ(found.size(), 1);
      ASSERT_EQ(found[0].run, 1);
      ASSERT_TRUE(repair().empty());
      if (i % 25 == 0) {
        forOthers([](const std::string& other) { fs::rename(other + ".away", other); });
        store_.prune(lock());
        forOthers([](const std::string& other) { fs::rename(other, other + ".away"); });
        ASSERT_TRUE(fs::exists(folder));
      }
      ASSERT_EQ(look(), files);
      replaceFile(path, isState ? state : before);
    }
    ASSERT_TRUE(findDamagedRuns(store_).empty());
    repair();
    undoLast(always);
    ASSERT_EQ(look(), start_);
  }
}

TEST_F(JournalTest, AJournalFromElsewhereIsNotUsed) {
  const std::string token = "0123456789abcdef";
  const struct {
    const char* what;
    std::uint32_t version;
    std::string token;
    std::string path;
    std::uint32_t count;
    const char* fault;
    // The numbers of files in the state.
    FileNumbers left = {};
    FileNumbers restored = {};
    FileNumbers undoing = {};
  } table[] = {
      {"a good one", journalVersion, token, "/a", 1, nullptr},
      {"another version", 1, token, "/a", 1, "by another version of the program"},
      {"a token that leads elsewhere", journalVersion, "../0123456789abc", "/a", 1, "'before'"},
      {"a token with letters", journalVersion, "0123456789abcdeF", "/a", 1, "'before'"},
      {"a relative path", journalVersion, token, "a", 1, "'before'"},
      {"a path that leads up", journalVersion, token, "/a/../b", 1, "'before'"},
      {"a path that ends above", journalVersion, token, "/a/..", 1, "'before'"},
      {"another number of files", journalVersion, token, "/a", 2, "'before'"},
      {"a left file that is not there", journalVersion, token, "/a", 1, "'state'", {1}},
      {"one that is restored", journalVersion, token, "/a", 1, "'state'", {}, {0, 1}},
      {"one to be undone twice", journalVersion, token, "/a", 1, "'state'", {}, {}, {0, 0}},
  };
  for (const auto& row : table) {
    const std::string folder = space_.path() / "journal";
    fs::create_directory(folder);
    RecordWriter before(folder + "/before");
    before.append(1, FieldWriter().put(row.version).put(std::int64_t{1}).put(row.token).bytes());
    FieldWriter file;
    file.put(row.path).put(0600U).put(std::int64_t{1});
    for (int i = 0; i < 6; ++i) file.put(std::uint64_t{0});
    before.append(2, file.bytes());
    before.append(3, FieldWriter().put(row.count).put("/").bytes());
    before.flush();
    StateFile(folder).write({.token = row.token,
                             .beforeSize = before.size(),
                             .left = row.left,
                             .restored = row.restored,
                             .undoing = row.undoing});
    const auto fault = findFault(folder);
    if (row.fault == nullptr) {
      EXPECT_EQ(fault, std::nullopt) << row.what;
    } else {
      EXPECT_NE(fault.value_or("").find(row.fault), std::string::npos) << row.what;
    }
    fs::remove_all(folder);
  }
}

// Runs that were killed when all new files were beside the old ones, and two of them replaced.
TEST_F(JournalTest, ARepairThatFailsIsRepeated) {
  dieAt(12, &JournalTest::write);
  EXPECT_EQ(space_.read("a/B"), newText);
  const std::string temporary =
      temporaryPath(space_.path() / "b/C", Journal(store_.folderOf(1)).token(), 2);
  ASSERT_TRUE(fs::remove(temporary) && fs::create_directory(temporary));
  for (int i = 0; i < 2; ++i) {
    const auto repaired = repair();
    ASSERT_EQ(repaired.size(), 1);
    ASSERT_EQ(repaired[0].result.failed.size(), 1);
    EXPECT_EQ(repaired[0].result.failed[0].path, temporary);
    EXPECT_EQ(stateOfLast(), StateType::interrupted);
  }
  EXPECT_EQ(look(), start_);
  fs::remove(temporary);
  EXPECT_EQ(repair().size(), 1);
  EXPECT_EQ(stateOfLast(), StateType::undone);
}

TEST_F(JournalTest, ARepairEndsWithoutFilesThatCannotBeRestored) {
  dieAt(12, &JournalTest::write);
  fs::create_hard_link(space_.path() / "a/A", space_.path() / "link");
  fs::rename(space_.path() / "b", space_.path() / "away");
  const auto repaired = repair();
  ASSERT_EQ(repaired.size(), 1);
  std::string reasons;
  for (const LeftFile& file : repaired[0].result.changed) reasons += file.reason + "; ";
  EXPECT_EQ(reasons, "it has more than one hard link now; it is gone; it is gone; ");
  EXPECT_TRUE(repair().empty());
  EXPECT_EQ(stateOfLast(), StateType::partlyUndone);
  EXPECT_EQ(space_.read("a/A"), newText);
  EXPECT_EQ(space_.read("a/B"), oldText);
  // An undo removes the files that the run left in the other folder, too.
  fs::remove(space_.path() / "link");
  fs::rename(space_.path() / "away", space_.path() / "b");
  EXPECT_EQ(space_.readAll().size(), 6);
  undoLast(always);
  EXPECT_EQ(look(), start_);
}

TEST_F(JournalTest, AFileThatWasNotWrittenIsNotUndone) {
  const auto list = changes();
  const OnStep changeOne = [&](StepType step, std::size_t) {
    if (step == StepType::staging) space_.write("a/B", "mine");
  };
  const auto newBytes = [](auto) { return std::string(newText); };
  const auto result = writeFiles(store_, lock(), list, newBytes, always, changeOne);
  EXPECT_EQ(result.failures.size(), 1);
  EXPECT_EQ(Journal(store_.folderOf(1)).changed(), FileNumbers({0, 2, 3}));
  EXPECT_TRUE(undoLast(always).changed.empty());
  EXPECT_EQ(stateOfLast(), StateType::undone);
  EXPECT_EQ(space_.read("a/B"), "mine");
}

TEST_F(JournalTest, AnInterruptedUndoOfAPartLeavesTheOthers) {
  write(always);
  dieAt(4, [](JournalTest& test, const GoesOn& goesOn) { test.undoLast(goesOn, {0, 2}); });
  EXPECT_EQ(stateOfLast(), StateType::interrupted);
  EXPECT_EQ(repair().size(), 1);
  for (const std::string& name : names_) {
    EXPECT_EQ(space_.read(name), name == "a/A" || name == "b/C" ? oldText : newText);
  }
  EXPECT_EQ(stateOfLast(), StateType::partlyUndone);
}

// What is left of a removed run is no run, and nothing is reported.
TEST_F(JournalTest, AnInterruptedRemovalIsCompleted) {
  write(always);
  fs::rename(store_.folderOf(1), oldFolderOf(store_.folderOf(1)));
  EXPECT_TRUE(store_.runs().empty());
  EXPECT_TRUE(repair().empty());
  EXPECT_TRUE(fs::is_empty(space_.statePath() / "soca/runs"));
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
  RunState state = readState(store_.folderOf(2));
  state.stage = RunState::StageType::running;
  StateFile(store_.folderOf(2)).write(state);
  write(always);
  EXPECT_EQ(store_.runs().size(), RunStore::mostRuns + 1);
  EXPECT_EQ(store_.runs().front(), 2) << "it waits for its repair";
  EXPECT_EQ(store_.runs().back(), 24);
  undoLast(always);
  fs::resize_file(store_.folderOf(10) + "/before", RunStore::mostBytes);
  write(always);
  EXPECT_EQ(store_.runs(), (std::vector<RunNumber>{2, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
                                                   21, 22, 23, 24, 25}))
      << "run 10 is damaged";
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

// In KiB.
long mappedFileMemory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long size = 0;
  while (status >> word && word != "RssFile:") continue;
  status >> size;
  return size;
}

TEST(RecordFile, ALargeFileIsNeverAllInMemory) {
  constexpr int count = 10;
  const Workspace space;
  const std::string path = space.path() / "records";
  RecordWriter writer(path);
  for (int i = 0; i < count; ++i) {
    writer.append(1, "fields", std::string(std::size_t{4} << 20U, static_cast<char>('a' + i)));
  }
  writer.flush();
  const long before = mappedFileMemory();
  const RecordFile file(path);
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(file.hasIntactData());
  EXPECT_LT(mappedFileMemory() - before, 16 << 10);
  for (int i = 0; i < count; ++i) {
    EXPECT_EQ(file.records().at(static_cast<std::size_t>(i)).data.back(), 'a' + i);
  }
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
