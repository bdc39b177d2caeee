// The option `--verify`: a command after which a run stays or is undone.
#include <gtest/gtest.h>

#include <spawn.h>

#include <cerrno>
#include <csignal>
#include <nlohmann/json.hpp>

#include "cli/terminal/ShellCommand.h"
#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

// In this test program there is never a process left to start.
extern "C" int posix_spawn(pid_t*, const char*, const posix_spawn_file_actions_t*,
                           const posix_spawnattr_t*, char* const[], char* const[]) {
  return EAGAIN;
}

namespace soca::testing {
namespace {

enum class FileType { old, updated, other };

struct Case {
  const char* what;
  std::string command;
  int exitCode;
  // The files A.vlm and B.vlm afterwards.
  FileType a;
  FileType b;
  // A part of standard error.
  const char* error;
};

void writeClasses(const Workspace& space) {
  space.write("A.vlm", outdatedClass("A"));
  space.write("B.vlm", outdatedClass("B"));
}

// The files after a run that is not verified.
std::map<std::string, std::string> updatedClasses() {
  const Workspace space;
  writeClasses(space);
  space.soca({"update", "--write", "-q"});
  return space.readAll();
}

FileType stateOf(const Workspace& space, const std::string& name) {
  static const auto updated = updatedClasses();
  const std::string text = space.read(name + ".vlm");
  if (text == outdatedClass(name)) return FileType::old;
  return text == updated.at(name + ".vlm") ? FileType::updated : FileType::other;
}

TEST(Verify, AFailureUndoesTheRun) {
  using enum FileType;
  const std::string soca = programPath();
  const Case cases[] = {
      {"a success keeps the files", "true", 0, updated, updated, "run 1 is verified by 'true'\n"},
      {"a failure does not", "false", 2, old, old,
       "soca: 'false' failed with exit code 1; run 1 is undone\n"},
      {"the result of the undo is shown", "false", 2, old, old,
       "soca: run 1: 2 files are as they were before\n"},
      {"the new files are there", "grep -L Propagates *.vlm | grep B && test -f A.vlm", 0, updated,
       updated, ""},
      {"what it prints is shown", "echo no >&2; exit 7", 2, old, old, "no\nsoca: 'echo no"},
      {"a command that does not exist", "./missing", 2, old, old, "failed with exit code 127; run"},
      {"a name like an option", "-x", 2, old, old, "failed with exit code 127; run"},
      {"the end by a signal", "kill -9 $$", 2, old, old, "was ended by a signal (Killed); run 1"},
      {"a file that the command changed stays", "echo % >>A.vlm; false", 2, other, old,
       "soca: 'A.vlm' is left as it is: it changed since the run wrote it\n"
       "soca: run 1: 1 file is as it was before, 1 is left; once nothing is in the way, "
       "'soca undo 1' goes on\n"},
      {"also of a command that succeeds", "echo % >>A.vlm", 0, other, updated, ""},
      {"the program itself is not locked out", soca + " update --check && " + soca + " undo", 0,
       old, old, ""},
      {"an undo in the command is not repeated", soca + " undo; false", 2, old, old,
       "soca: run 1 is undone already"},
      {"a lost journal", soca + " undo --forget 1; false", 2, updated, updated,
       "soca: there is no run 1"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const Workspace space;
    writeClasses(space);
    const auto result = space.soca({"update", "--write", "--verify", each.command});
    EXPECT_EQ(result.exitCode, each.exitCode);
    EXPECT_NE(result.err.find(each.error), std::string::npos) << result.err;
    EXPECT_EQ(stateOf(space, "A"), each.a);
    EXPECT_EQ(stateOf(space, "B"), each.b);
  }
}

TEST(Verify, WithoutAWrittenFileNothingIsRun) {
  const Workspace space;
  writeClasses(space);
  const std::vector<std::string> command = {"update", "--write", "--verify", "echo >>ran; false"};
  space.write("Broken.vlm", "classdef Broken < velum.System\n");
  EXPECT_EQ(space.soca(command).exitCode, 2);
  EXPECT_EQ(space.read("ran"), "\n") << "the other classes are verified";
  space.soca({"update", "--write"});
  space.write("Broken.vlm", "classdef Broken < velum.System\nend\n");
  const auto result = space.soca(command);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.err.find("note: nothing was written, so 'echo >>ran; false' is not run\n"),
            std::string::npos);
  EXPECT_EQ(space.read("ran"), "\n");
}

TEST(Verify, ACommandThatCannotBeStartedFails) {
  const auto result = cli::runInShell("true", cli::CommandOutputType::standardOutput);
  EXPECT_EQ(result.failure, "can't be started: Resource temporarily unavailable");
  // For the programs that other tests start.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXFSZ}) std::signal(signal, SIG_DFL);
}

TEST(Verify, TheCommandHasItsOwnStreamsAndSignals) {
  const Workspace space;
  writeClasses(space);
  const std::string command = "grep -E 'Sig(Blk|Ign)' /proc/self/status; ls /proc/self/fd";
  const auto alone = space.run({"sh", "-c", command});
  EXPECT_EQ(space.soca({"update", "--write", "--verify", command}).out, alone.out);
  space.soca({"undo"});
  const auto json =
      space.soca({"update", "--write", "--format=json", "--verify", "echo to the user"});
  EXPECT_EQ(nlohmann::json::parse(json.out).at("results").size(), 2);
  EXPECT_NE(json.err.find("to the user\n"), std::string::npos);
  space.soca({"undo"});
  const auto ignoring = space.run({"env", "--ignore-signal=CHLD", programPath(), "update",
                                   "--write", "-q", "--verify", "false"});
  EXPECT_NE(ignoring.err.find("'false' failed with exit code 1"), std::string::npos);
  EXPECT_EQ(stateOf(space, "A"), FileType::old);
}

TEST(Verify, AnInterruptUndoesTheRun) {
  const Workspace space;
  writeClasses(space);
  // What it shows, the command, the signal that only the program gets, and the exit code. Without a
  // signal the keys are typed, which interrupt the command too.
  const std::tuple<const char*, std::string, int, int> cases[] = {
      {"the command ends by the key", "echo ready; sleep 60; true", 0, 130},
      {"the command ends by a second key",
       "trap 'echo caught; n=1$n' INT; echo ready; until [ \"$n\" = 11 ]; do sleep 0.1; done", 0,
       130},
      {"a signal is passed on", "echo ready; exec sleep 60", SIGTERM, 143},
      {"the command handles it", "trap 'exit 0' INT; echo ready; while :; do sleep 0.1; done",
       SIGINT, 130},
  };
  for (const auto& [what, command, signal, exitCode] : cases) {
    SCOPED_TRACE(what);
    TerminalRun run(space,
                    {programPath(), "update", "--write", "--color=never", "--verify", command});
    ASSERT_TRUE(run.waitFor("ready\n")) << run.output();
    if (signal == 0) {
      run.type("\x03");
      if (command.starts_with("trap") && run.waitFor("caught\n")) run.type("\x03");
    } else {
      ::kill(run.process(), signal);
    }
    EXPECT_EQ(run.finish(), exitCode) << run.output();
    EXPECT_NE(run.output().find("interrupted; run"), std::string::npos) << run.output();
    EXPECT_NE(run.output().find("2 files are as they were before"), std::string::npos);
    EXPECT_EQ(stateOf(space, "A"), FileType::old);
  }
}

}  // namespace
}  // namespace soca::testing
