// How the program ends: by signals, and for lack of memory or threads.
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include "files/writing/RunStore.h"
#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

namespace soca::testing {
namespace {

// While it is held, programs that write wait, and say so.
RunStore::Lock holdLock() {
  return *RunStore().lock([] {}, [] { return true; });
}

constexpr std::string_view waiting = "waiting for it to end";

// Without colours and, for a shell, in words.
const std::string updateCommand = programPath() + " update --write --color=never";

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
    TerminalRun run(space, {programPath(), "update", "--write"});
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
  const std::string soca = "env --default-signal=PIPE " + programPath() + " ";
  // What it shows, and whether the file is a new one afterwards.
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"a dry run", soca + "update", false},
      {"a run that writes ends after that", soca + "update --write --format json", true},
      {"an undo, too", soca + "undo -v 2>&1", false},
      {"without messages", soca + "update --write 2>&1", true},
      {"an undo without messages", soca + "undo 2>&1", false},
      {"a verified run is undone", soca + "update --write --verify true 2>&1", false},
  };
  for (const auto& [what, command, isNew] : cases) {
    const auto result = runWithoutReader(space, command);
    EXPECT_EQ(result.exitCode, 128 + SIGPIPE) << what;
    EXPECT_EQ(result.err.find("could not be written"), std::string::npos) << result.err;
    EXPECT_EQ(space.read("A.vlm") != outdatedClass("A"), isNew) << what;
    EXPECT_EQ(space.readAll().size(), 1) << what;
  }
  const auto ignoring = runWithoutReader(space, programPath() + " undo --list");
  EXPECT_EQ(ignoring.exitCode, 2);
  EXPECT_NE(ignoring.err.find("could not be written: Broken pipe"), std::string::npos);
}

// `limits` are the arguments of `ulimit`, in KiB.
ProgramResult runWithin(const Workspace& space, const std::string& limits,
                        const std::string& arguments) {
  return space.run(
      {"bash", "-c", "ulimit " + limits + "; exec " + programPath() + " " + arguments});
}

std::string memory(std::size_t kibibytes) { return "-v " + std::to_string(kibibytes); }

// Sanitizers take terabytes of addresses for themselves.
bool runsWithinLimits() {
  return runWithin(Workspace(), memory(1'000'000), "--version").exitCode == 0;
}

TEST(Limits, WithoutMemoryNothingIsWritten) {
  if (!runsWithinLimits()) GTEST_SKIP() << "the program is built with a sanitizer";
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  // Large enough that what the program has for itself is little beside it.
  space.write("B.vlm", outdatedClass("B") + "% " + std::string(12'000'000, 'x') + "\n");
  const auto before = space.readAll();
  std::size_t limit = 5000;
  while (runWithin(space, memory(limit), "--version").exitCode != 0) limit += 1000;
  int failures = 0;
  for (auto result = runWithin(space, memory(limit), "update --write -j 1"); result.exitCode != 0;
       result = runWithin(space, memory(limit), "update --write -j 1")) {
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
  if (!runsWithinLimits()) GTEST_SKIP() << "the program is built with a sanitizer";
  const Workspace space;
  space.write("p/A.vlm", outdatedClass("A"));
  // Large stacks use the addresses up while there is memory for all else.
  const std::string limits = memory(1'000'000) + " -s 400000";
  // More files than the threads take before they wait for the first one.
  const std::string manyFiles = "check -j 1000 $(yes p/A.vlm | head -n 9000)";
  for (const std::string& arguments : {std::string("update --write -j 1000 p"), manyFiles}) {
    const auto result = runWithin(space, limits, arguments);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("no more threads can be started"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("there is no class file"), std::string::npos) << result.err;
  }
  EXPECT_EQ(space.read("p/A.vlm"), outdatedClass("A"));
  EXPECT_EQ(runWithin(space, limits, "update --write -j 1 p").exitCode, 0);
}

}  // namespace
}  // namespace soca::testing
