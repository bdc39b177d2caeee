// The program while files change and system calls fail, which strace brings about.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

// False without strace, without the right to trace, and for a program that refuses to be traced
// because it is built with a sanitizer.
bool canTrace(const Workspace& space) {
  return space.run({"strace", "-qq", "-e", "trace=none", programPath(), "--version"}).exitCode == 0;
}

constexpr const char* whyNotTraced = "the program cannot be traced by strace";

// Whether the child is stopped, which is waited for; false if it ends.
bool isStopped(pid_t process) {
  siginfo_t state = {};
  ::waitid(P_PID, static_cast<id_t>(process), &state, WSTOPPED | WEXITED | WNOWAIT);
  if (state.si_code != CLD_STOPPED && state.si_code != CLD_TRAPPED) return false;
  return ::waitid(P_PID, static_cast<id_t>(process), &state, WSTOPPED | WNOHANG) == 0;
}

// An update that stops after each of the system calls, and waits once for its turn to write, when
// it has computed everything. strace must not be its parent, so that this process sees the stops.
std::vector<std::string> stoppingUpdate(const std::string& stops) {
  return {"strace", "-D", "-f", "-qq", "-o", "/dev/null", "-e", "trace=flock,newfstatat", "-e",
          // The first lock is that of the repair before the update.
          "inject=flock:error=EAGAIN:when=2", "-e", "inject=" + stops, programPath(), "update",
          "--write", "--jobs=1", "--color=never", "--path=front", "--path=."};
}

// The output of an update that has computed everything when `change` is called.
std::string updateWhile(const Workspace& space, const std::function<void()>& change,
                        int expectedExitCode) {
  TerminalRun run(space, stoppingUpdate("flock:signal=SIGSTOP:error=EAGAIN:when=2"));
  EXPECT_TRUE(isStopped(run.process()));
  change();
  ::kill(run.process(), SIGCONT);
  EXPECT_EQ(run.finish(), expectedExitCode) << run.output();
  return run.output();
}

void writeClasses(const Workspace& space) {
  space.write("Base.vlm", "classdef Base < handle\nend\n");
  space.write("Top.vlm", "classdef Top < velum.system.mixin.Propagates & Base\nend\n");
  space.write("Middle.vlm",
              "classdef Middle < Top & pkg.Missing\nproperties (Logical)\nP = true;\nend\nend\n");
  space.write("Other.vlm", outdatedClass("Other"));
  space.write("front/Front.vlm", "classdef Front\nend\n");
}

TEST(ChangedFiles, ClassesAreUpdatedAgain) {
  if (!canTrace(Workspace())) GTEST_SKIP() << whyNotTraced;
  constexpr const char* again = "files have changed since they were read; ";
  const struct {
    const char* what;
    const char* file;
    // Null for none.
    const char* text;
    const char* note;
    // Whether a new run would not look at the file, so that the class fails only in this one.
    bool isGone = false;
  } table[] = {
      {"a superclass", "Base.vlm", "classdef Base < velum.System\nend\n", "2 classes are"},
      {"the class itself", "Other.vlm",
       "classdef Other < velum.System\nproperties (Logical)\nQ = true;\nend\nend\n", "1 class is"},
      {"a superclass that is gone", "Top.vlm", nullptr, "2 classes are", true},
      {"a superclass that was missing", "pkg/Missing.vlm", "classdef Missing\nend\n", "1 class is"},
      {"a file in front of a superclass", "front/Base.vlm",
       "classdef Base < velum.System & Unknown\nend\n", "2 classes are"},
      {"a file in front of the class itself", "front/Other.vlm",
       "classdef Other < velum.System\nend\n", "1 class is", true},
      {"a p-file in front of a superclass", "front/Base.p", "", "2 classes are"},
      {"a p-file beside a superclass", "Base.p", "", "2 classes are"},
      {"a class that is no superclass", "New.vlm", "classdef New < velum.System\nend\n", nullptr},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.what);
    const auto change = [&](const Workspace& space) {
      if (row.text == nullptr) {
        fs::remove(space.path() / row.file);
      } else {
        space.write(row.file, row.text);
      }
    };
    std::map<std::string, std::string> expected;
    int exitCode = 0;
    {
      const Workspace space;
      writeClasses(space);
      change(space);
      exitCode = space.soca({"update", "--write", "--path=front", "--path=."}).exitCode;
      expected = space.readAll();
    }
    const Workspace space;
    writeClasses(space);
    const auto changeIt = [&] { change(space); };
    const std::string output = updateWhile(space, changeIt, row.isGone ? 2 : exitCode);
    EXPECT_EQ(space.readAll(), expected) << output;
    const std::string note = again + std::string(row.note == nullptr ? "" : row.note);
    EXPECT_EQ(output.find(note) != std::string::npos, row.note != nullptr) << output;
  }
}

TEST(ChangedFiles, ClassesFailWhoseFilesKeepChanging) {
  const Workspace space;
  if (!canTrace(space)) GTEST_SKIP() << whyNotTraced;
  writeClasses(space);
  const std::string old = space.read("Top.vlm");
  TerminalRun run(space, stoppingUpdate("newfstatat:signal=SIGSTOP"));
  std::size_t changes = 0;
  while (isStopped(run.process())) {
    if (run.hasPrinted("waiting for it to end")) {
      // Two files of one size may have equal stamps if there are milliseconds between them.
      space.write("next", "classdef Base < handle\nend\n%" + std::string(++changes, 'x'));
      fs::rename(space.path() / "next", space.path() / "Base.vlm");
    }
    ::kill(run.process(), SIGCONT);
  }
  EXPECT_EQ(run.finish(), 2) << run.output();
  EXPECT_GT(changes, 0U);
  EXPECT_NE(run.output().find("Top.vlm' was not written and stays as it was: it changed since"),
            std::string::npos)
      << run.output();
  EXPECT_EQ(space.read("Top.vlm"), old);
  EXPECT_NE(space.read("Other.vlm"), outdatedClass("Other"));
}

// One system call of a run: the one with that number among those of its name.
struct Call {
  std::string name;
  unsigned number = 0;
};

// A command that changes files, and their state before it.
struct Command {
  const char* what;
  std::vector<std::string> arguments;
  // Whether files are updated before, and the command whose tenth file is the last before it is
  // killed; empty for none.
  bool isAfterUpdate;
  std::vector<std::string> killed;
};

// A failure of `close` would only be pretended, and `geteuid` has none. After `exit_group` nothing
// is left to do.
bool isLeftOut(std::string_view name) {
  constexpr std::string_view names[] = {"close", "exit_group", "futex", "geteuid"};
  return std::ranges::find(names, name) != std::end(names);
}

using Files = std::map<std::string, std::string>;

class InjectedFaults : public ::testing::Test {
 protected:
  InjectedFaults() {
    for (int i = 0; i < 5; ++i) {
      old_[fmt::format("p/Base{}.vlm", i)] =
          fmt::format("classdef Base{} < handle\nmethods\nfunction f{}(obj),end\nend\nend\n", i, i);
    }
    for (int i = 0; i < 20; ++i) {
      old_[fmt::format("q{}/C{}.vlm", i % 3, i)] = fmt::format(
          "classdef C{} < velum.system.mixin.Propagates & p.Base{}\n"
          "properties (Logical)\nP = true;\nend\nend\n",
          i, i % 5);
    }
    restore();
    EXPECT_EQ(space_.soca(update_).exitCode, 0);
    new_ = space_.readAll();
  }

  void restore() {
    fs::remove_all(space_.statePath());
    for (const auto& entry : fs::directory_iterator(space_.path())) fs::remove_all(entry);
    for (const auto& [name, bytes] : old_) space_.write(name, bytes);
  }

  ProgramResult trace(std::vector<std::string> options, const std::vector<std::string>& arguments) {
    options.insert(options.begin(), {"strace", "-qq", "-o", log_});
    options.push_back(programPath());
    options.insert(options.end(), arguments.begin(), arguments.end());
    return space_.run(options);
  }

  void prepare(const Command& command) {
    restore();
    if (command.isAfterUpdate) space_.soca(update_);
    if (!command.killed.empty()) trace({"-e", "inject=rename:signal=KILL:when=10"}, command.killed);
  }

  // The calls of the command without faults, from the first one of its `main` on.
  std::vector<Call> callsOf(const Command& command) {
    prepare(command);
    EXPECT_EQ(trace({}, command.arguments).exitCode, 0);
    std::ifstream log(log_);
    std::map<std::string, unsigned> numbers;
    std::vector<Call> calls;
    bool isInMain = false;
    for (std::string line; std::getline(log, line);) {
      const std::string name = line.substr(0, line.find('('));
      const unsigned number = ++numbers[name];
      // It looks whether its outputs are terminals.
      isInMain = isInMain || name == "ioctl";
      if (isInMain && !isLeftOut(name)) calls.push_back({name, number});
    }
    return calls;
  }

  // No file is torn, none is left behind, and exit code 0 means that all is done; the next run
  // finishes what is left.
  void expectSafe(const Command& command, const ProgramResult& result) {
    const Files& wanted = command.arguments.front() == "undo" ? old_ : new_;
    const Files files = space_.readAll();
    for (const auto& [name, bytes] : old_) {
      const auto found = files.find(name);
      ASSERT_NE(found, files.end()) << name << " is gone";
      EXPECT_TRUE(found->second == bytes || found->second == new_.at(name)) << found->second;
    }
    EXPECT_TRUE(result.exitCode == 2 || (result.exitCode == 0 && files == wanted))
        << result.exitCode << '\n'
        << result.err;
    EXPECT_TRUE(result.exitCode == 0 || !result.err.empty());
    const auto again = space_.soca(update_);
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(space_.readAll(), new_) << again.err;
  }

  // Files in memory are flushed at once.
  const int usesMemory_ = ::access("/dev/shm", W_OK) == 0 ? ::setenv("TMPDIR", "/dev/shm", 0) : 0;
  const Workspace space_;
  const std::vector<std::string> update_ = {"update", "--write", "-j", "1"};
  std::string log_ = space_.statePath().string() + ".log";
  Files old_;
  Files new_;
};

// Makes each system call fail in each way, or, without FAULTS in the environment, a few of them.
TEST_F(InjectedFaults, OfSystemCallsTearNoFileAndAreReported) {
  if (!canTrace(space_)) GTEST_SKIP() << whyNotTraced;
  const char* wanted = std::getenv("FAULTS");
  const unsigned long most = wanted == nullptr ? 10 : std::strtoul(wanted, nullptr, 10);
  const Command commands[] = {
      {"an update", update_, false, {}},
      {"an undo", {"undo"}, true, {}},
      {"an update that repairs an update", update_, false, update_},
      {"an update that completes an undo", update_, true, {"undo"}},
  };
  std::mt19937 random(1);
  for (const Command& command : commands) {
    std::vector<std::pair<Call, const char*>> faults;
    for (const Call& call : callsOf(command)) {
      for (const char* error : {"EIO", "ENOSPC", "EACCES", "EINTR", "EMFILE"}) {
        faults.emplace_back(call, error);
      }
    }
    EXPECT_GT(faults.size(), 1000) << command.what;
    std::ranges::shuffle(faults, random);
    faults.resize(std::min<std::size_t>(faults.size(), most));
    for (const auto& [call, error] : faults) {
      SCOPED_TRACE(fmt::format("{}: {} of {} {}", command.what, error, call.name, call.number));
      prepare(command);
      const auto fault = fmt::format("inject={}:error={}:when={}", call.name, error, call.number);
      expectSafe(command, trace({"-e", fault}, command.arguments));
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(InjectedFaults, InterruptedCallsAreRepeated) {
  if (!canTrace(space_)) GTEST_SKIP() << whyNotTraced;
  for (const Command& command :
       {Command{"an update", update_, false, {}}, Command{"an undo", {"undo"}, true, {}}}) {
    std::map<std::string, unsigned> first;
    for (const Call& call : callsOf(command)) first.try_emplace(call.name, call.number);
    // Every other call is interrupted, so each succeeds when it is repeated.
    const auto everyOther = [&](const char* name) {
      return fmt::format("inject={}:error=EINTR:when={}+2", name, first.at(name));
    };
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"-e", everyOther("read")},
          {"-e", everyOther("write")},
          {"-P", space_.path() / "q1", "-e", "inject=openat:error=EINTR:when=1"}}) {
      SCOPED_TRACE(fmt::format("{}: {}", command.what, options.back()));
      prepare(command);
      const auto result = trace(options, command.arguments);
      EXPECT_EQ(result.exitCode, 0) << result.err;
      EXPECT_EQ(space_.readAll(), command.isAfterUpdate ? old_ : new_);
    }
  }
}

TEST_F(InjectedFaults, OfARepairAreNotForgotten) {
  if (!canTrace(space_)) GTEST_SKIP() << whyNotTraced;
  const std::string journal = (space_.statePath() / "soca/runs/1/before").string();
  const Command command = {"an update that repairs an update", update_, false, update_};
  // Repaired only after the update has read the files: what it was to leave alone is updated too.
  prepare(command);
  const auto late = trace({"-P", journal, "-e", "inject=openat:error=EMFILE:when=1"}, update_);
  EXPECT_EQ(late.exitCode, 0);
  EXPECT_NE(late.err.find("20 changed"), std::string::npos) << late.err;
  EXPECT_EQ(space_.readAll(), new_);
  // Temporary files that cannot be removed wait for the next run.
  prepare(command);
  const auto half = trace({"-e", "inject=unlink:error=EACCES"}, update_);
  EXPECT_EQ(half.exitCode, 2);
  EXPECT_NE(half.err.find("this is tried again"), std::string::npos) << half.err;
  EXPECT_EQ(space_.soca(update_).exitCode, 0);
  EXPECT_EQ(space_.readAll(), new_);
}

}  // namespace
}  // namespace soca::testing
