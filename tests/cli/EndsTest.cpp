// How the program ends: by signals, and for lack of memory or threads.
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include "files/writing/RunStore.h"
#include "tests/cli/TerminalRun.h"

namespace soca::testing {
namespace {

// While it is held, programs that write wait, and say so.
RunStore::Lock holdLock() {
  return *RunStore().lock([] {}, [] { return true; });
}

constexpr std::string_view waiting = "waiting for it to end";

// Without colours and, for a shell, in words.
const std::string updateCommand = SOCA_PROGRAM " update --write --color=never";

TEST(Signals, AnInterruptEndsALoopOfTheShell) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  const auto lock = holdLock();
  TerminalRun run(
      space,
      {"bash", "-c", "for i in 1 2 3; do " + updateCommand + "; echo went on; done; echo went on"});
  ASSERT_TRUE(run.waitFor(waiting)) << run.output();
  run.type("\x03");
  EXPECT_EQ(run.finish(), 130);
  EXPECT_NE(run.output().find("interrupted; looked at"), std::string::npos) << run.output();
  EXPECT_EQ(run.output().find("went on"), std::string::npos) << run.output();
  EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
}

TEST(Signals, EndTheProgramAfterItHasCleanedUp) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const auto lock = holdLock();
    TerminalRun run(space, {SOCA_PROGRAM, "update", "--write"});
    ASSERT_TRUE(run.waitFor(waiting)) << run.output();
    ::kill(run.process(), signal);
    EXPECT_EQ(run.finish(), 128 + signal);
    EXPECT_NE(run.output().find("nothing was written"), std::string::npos) << run.output();
  }
  EXPECT_EQ(space.readAll().size(), 1);
  EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
}

TEST(Signals, IgnoredOnesStayIgnored) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  auto lock = std::optional(holdLock());
  TerminalRun run(space, {"sh", "-c", "trap '' INT TERM HUP; exec " + updateCommand});
  ASSERT_TRUE(run.waitFor(waiting)) << run.output();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::kill(run.process(), signal);
  lock.reset();
  EXPECT_EQ(run.finish(), 0);
  EXPECT_NE(space.read("A.vlm"), outdatedClass("A"));
}

// Runs the program in a pipe that nothing reads any more.
ProgramResult runWithoutReader(const Workspace& space, const std::string& command) {
  return space.run({"bash", "-c",
                    "trap '' PIPE; { while echo; do :; done 2>/dev/null; " + command +
                        "; echo $? >code; } | true; read code <code; rm code; exit $code"});
}

TEST(Signals, WithoutAReaderTheProgramEndsQuietly) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  const std::string soca = "env --default-signal=PIPE " SOCA_PROGRAM " ";
  // What it shows, and whether the file is a new one afterwards.
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"a dry run", soca + "update", false},
      {"a run that writes ends after that", soca + "update --write --format json", true},
      {"an undo, too", soca + "undo -v 2>&1", false},
      {"without messages", soca + "update --write 2>&1", true},
  };
  for (const auto& [what, command, isNew] : cases) {
    const auto result = runWithoutReader(space, command);
    EXPECT_EQ(result.exitCode, 128 + SIGPIPE) << what;
    EXPECT_EQ(result.err.find("could not be written"), std::string::npos) << result.err;
    EXPECT_EQ(space.read("A.vlm") != outdatedClass("A"), isNew) << what;
    EXPECT_EQ(space.readAll().size(), 1) << what;
  }
  const auto ignoring = runWithoutReader(space, SOCA_PROGRAM " undo --list");
  EXPECT_EQ(ignoring.exitCode, 2);
  EXPECT_NE(ignoring.err.find("could not be written: Broken pipe"), std::string::npos);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

ProgramResult runWithin(const Workspace& space, std::size_t kibibytes,
                        const std::string& arguments) {
  return space.run(
      {"bash", "-c",
       "ulimit -v " + std::to_string(kibibytes) + "; exec " SOCA_PROGRAM " " + arguments});
}

TEST(Limits, WithoutMemoryNothingIsWritten) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  // Large enough that what the program has for itself is little beside it.
  space.write("B.vlm", outdatedClass("B") + "% " + std::string(12'000'000, 'x') + "\n");
  const auto before = space.readAll();
  std::size_t limit = 5000;
  while (runWithin(space, limit, "--version").exitCode != 0) limit += 1000;
  int failures = 0;
  for (auto result = runWithin(space, limit, "update --write -j 1"); result.exitCode != 0;
       result = runWithin(space, limit, "update --write -j 1")) {
    SCOPED_TRACE(limit);
    ++failures;
    ASSERT_EQ(result.exitCode, 2) << result.err;
    EXPECT_NE(result.err.find("soca: there is not enough memory\n"), std::string::npos)
        << result.err;
    ASSERT_EQ(space.readAll(), before);
    limit += limit / 8;
  }
  EXPECT_GT(failures, 2);
  EXPECT_EQ(space.readAll().size(), 2);
  EXPECT_NE(space.read("B.vlm"), before.at("B.vlm"));
}

TEST(Limits, WithoutThreadsNothingIsWritten) {
  const Workspace space;
  space.write("p/A.vlm", outdatedClass("A"));
  constexpr std::size_t limit = 1'000'000;
  // More files than the threads take before they wait for the first one.
  const std::string manyFiles = "check -j 1000 $(yes p/A.vlm | head -n 9000)";
  for (const std::string& arguments : {std::string("update --write -j 1000 p"), manyFiles}) {
    const auto result = runWithin(space, limit, arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("no more threads can be started"), std::string::npos) << result.err;
  }
  EXPECT_EQ(space.read("p/A.vlm"), outdatedClass("A"));
  EXPECT_EQ(runWithin(space, limit, "update --write -j 1 p").exitCode, 0);
}

#endif

}  // namespace
}  // namespace soca::testing
