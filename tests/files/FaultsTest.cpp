// The program while files change and system calls fail, which strace brings about.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

bool canTrace() {
  const Workspace space;
  return space.run({"strace", "-qq", "-e", "trace=none", "true"}).exitCode == 0;
}

// The output of an update that has computed everything, and then waits for some time for its turn
// to write, while `change` is called. It looks at files slowly, so that others can change them.
std::string updateWhile(const Workspace& space, const std::function<void()>& change,
                        int expectedExitCode) {
  // The first lock is that of the repair before the update.
  TerminalRun run(
      space, {"strace", "-f", "-qq", "-o", "/dev/null", "-e", "trace=flock,newfstatat", "-e",
              "inject=flock:error=EAGAIN:when=2..6", "-e", "inject=newfstatat:delay_enter=3000",
              programPath(), "update", "--write", "--color=never"});
  EXPECT_TRUE(run.waitFor("waiting for it to end")) << run.output();
  change();
  EXPECT_EQ(run.finish(), expectedExitCode) << run.output();
  return run.output();
}

void writeClasses(const Workspace& space) {
  space.write("Base.vlm", "classdef Base < handle\nend\n");
  space.write("Top.vlm", "classdef Top < velum.system.mixin.Propagates & Base\nend\n");
  space.write("Middle.vlm",
              "classdef Middle < Top & pkg.Missing\nproperties (Logical)\nP = true;\nend\nend\n");
  space.write("Other.vlm", outdatedClass("Other"));
}

TEST(ChangedFiles, ClassesAreUpdatedAgain) {
  if (!canTrace()) GTEST_SKIP() << "strace is not installed, or may not trace";
  constexpr const char* again = "files have changed since they were read; ";
  const struct {
    const char* what;
    const char* file;
    // Null for none.
    const char* text;
    const char* note;
  } table[] = {
      {"a superclass", "Base.vlm", "classdef Base < velum.System\nend\n", "2 classes are"},
      {"the class itself", "Other.vlm",
       "classdef Other < velum.System\nproperties (Logical)\nQ = true;\nend\nend\n", "1 class is"},
      {"a superclass that is gone", "Top.vlm", nullptr, "2 classes are"},
      {"a superclass that was missing", "pkg/Missing.vlm", "classdef Missing\nend\n", "1 class is"},
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
      exitCode = space.soca({"update", "--write"}).exitCode;
      expected = space.readAll();
    }
    const Workspace space;
    writeClasses(space);
    // A class that is gone is no longer found by a folder's update, but was by this one.
    const bool isGone = row.text == nullptr;
    const auto changeIt = [&] { change(space); };
    const std::string output = updateWhile(space, changeIt, isGone ? 2 : exitCode);
    EXPECT_EQ(space.readAll(), expected) << output;
    const std::string note = again + std::string(row.note == nullptr ? "" : row.note);
    EXPECT_EQ(output.find(note) != std::string::npos, row.note != nullptr) << output;
  }
}

TEST(ChangedFiles, ClassesFailWhoseFilesKeepChanging) {
  if (!canTrace()) GTEST_SKIP() << "strace is not installed, or may not trace";
  const Workspace space;
  writeClasses(space);
  const std::string old = space.read("Top.vlm");
  std::jthread changer;
  const auto change = [&] {
    changer = std::jthread([&](const std::stop_token& stop) {
      for (std::size_t i = 0; !stop.stop_requested(); ++i) {
        // Two files of one size may have equal stamps if there are milliseconds between them.
        space.write("next", "classdef Base < handle\nend\n%" + std::string(i % 1000, 'x'));
        fs::rename(space.path() / "next", space.path() / "Base.vlm");
      }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  };
  const std::string output = updateWhile(space, change, 2);
  changer = {};
  EXPECT_NE(output.find("Top.vlm' was not written and stays as it was: it changed since"),
            std::string::npos)
      << output;
  EXPECT_EQ(space.read("Top.vlm"), old);
  EXPECT_NE(space.read("Other.vlm"), outdatedClass("Other"));
}

}  // namespace
}  // namespace soca::testing
