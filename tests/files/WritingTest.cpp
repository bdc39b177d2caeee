#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "files/writing/FileWriter.h"
#include "files/writing/Spool.h"
#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

Replacement replacementFor(const fs::path& path) {
  return {path, "new", fl::filesystem::stampOf(path).value()};
}

unsigned modeOf(const fs::path& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

TEST(Writing, KeepsPermissionsAndLinks) {
  const Workspace space;
  space.write("real/A.vlm", outdatedClass("A"));
  space.write("B.vlm", outdatedClass("B"));
  ::chmod((space.path() / "real/A.vlm").c_str(), 0640);
  ::chmod((space.path() / "B.vlm").c_str(), 0755);
  fs::create_symlink("real/A.vlm", space.path() / "A.vlm");
  const auto result = space.soca({"update", "--write", "A", "real.A", "B"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(fs::is_symlink(space.path() / "A.vlm"));
  EXPECT_EQ(space.read("real/A.vlm").find("Propagates"), std::string::npos);
  EXPECT_EQ(modeOf(space.path() / "real/A.vlm"), 0640U);
  EXPECT_EQ(modeOf(space.path() / "B.vlm"), 0755U);
  EXPECT_EQ(space.readAll().size(), 2);
}

TEST(Writing, HardLinksAreRefusedInADryRunToo) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  space.write("B.vlm", outdatedClass("B"));
  fs::create_hard_link(space.path() / "A.vlm", space.path() / "other");
  const auto dry = space.soca({"update"});
  const auto written = space.soca({"update", "--write"});
  for (const auto& result : {dry, written}) {
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("soca:FileNotReplaceable"), std::string::npos) << result.err;
  }
  EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
  EXPECT_NE(space.read("B.vlm"), outdatedClass("B"));
}

TEST(Writing, TextWithoutAnEncodingIsAnError) {
  const Workspace space;
  std::string latin = outdatedClass("A");
  latin.replace(latin.find("\u00e9"), 2, "\xe9");
  space.write("A.vlm", latin);
  space.write("table.json", R"({"classes": {"A": {"properties": {"Mode": {"constrainedSet":
      {"kind": 1, "valueType": 1, "setProperty": "ModeSet",
       "values": ["auto", "\u4e2d"]}}}}}})");
  const auto result = space.soca({"update", "--write", "--class-table", "table.json"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("soca:TextNotEncodable"), std::string::npos) << result.err;
  EXPECT_EQ(space.read("A.vlm"), latin);
}

// A file that is replaced between the steps is not changed, and neither are the others.
TEST(Writing, AFileThatWasReplacedIsNotChanged) {
  const std::vector<std::pair<const char*, std::function<void(const fs::path&)>>> cases = {
      {"other bytes", [](const fs::path& path) { std::ofstream(path) << "older"; }},
      {"another file", [](const fs::path& path) { fs::rename(path.string() + "-two", path); }},
      {"a link to the file",
       [](const fs::path& path) {
         fs::rename(path, path.string() + "-moved");
         fs::create_symlink(path.string() + "-moved", path);
       }},
      {"a pipe",
       [](const fs::path& path) {
         fs::remove(path);
         ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
       }},
      {"a folder", [](const fs::path& path) { fs::remove(path), fs::create_directory(path); }},
      {"nothing", [](const fs::path& path) { fs::remove(path); }},
  };
  for (const auto& [what, replace] : cases) {
    SCOPED_TRACE(what);
    const Workspace space;
    for (const char* name : {"one", "two", "one-two"}) space.write(name, "old");
    const auto one = replacementFor(space.path() / "one");
    FileWriter writer("t");
    EXPECT_EQ(writer.stage(0, one), std::nullopt);
    EXPECT_EQ(writer.stage(1, replacementFor(space.path() / "two")), std::nullopt);
    EXPECT_EQ(writer.flush(), std::nullopt);
    replace(space.path() / "one");
    const auto type = fs::symlink_status(space.path() / "one").type();
    EXPECT_EQ(writer.commit(0), changedReason);
    EXPECT_EQ(writer.commit(1), std::nullopt);
    EXPECT_NE(writer.stage(2, one), std::nullopt);
    writer.discardRest();
    EXPECT_EQ(fs::symlink_status(space.path() / "one").type(), type);
    EXPECT_EQ(space.read("two"), "new");
    for (const auto& [name, bytes] : space.readAll()) EXPECT_FALSE(name.starts_with('.')) << name;
  }
}

TEST(Writing, SpoolGivesBackWhatWasPut) {
  Spool spool;
  std::vector<std::pair<Spool::Place, std::string>> texts;
  for (std::size_t i = 0; i < 40; ++i) {
    const std::string text(i % 7 == 0 ? 900'000 : i * 11, static_cast<char>('a' + i % 26));
    texts.emplace_back(spool.put(text), text);
  }
  for (const auto& [place, text] : texts) EXPECT_TRUE(spool.take(place) == text);
  const char* folder = std::getenv("TMPDIR");
  const std::string usual = folder == nullptr ? "/tmp" : folder;
  ::setenv("TMPDIR", "/dev/null", 1);
  EXPECT_THROW(Spool().put(std::string(5'000'000, 'x')), std::runtime_error);
  ::setenv("TMPDIR", usual.c_str(), 1);
}

// The program is interrupted at several moments; in each case it ends soon, and each file is the
// old one or the new one.
TEST(Writing, AnInterruptLeavesWholeFiles) {
  const Workspace space;
  for (int i = 0; i < 300; ++i) {
    const std::string name = "C" + std::to_string(i);
    space.write(name + ".vlm", outdatedClass(name));
  }
  const auto before = space.readAll();
  ASSERT_EQ(space.soca({"update", "--write", "-q"}).exitCode, 0);
  const auto updated = space.readAll();
  for (const auto& [name, bytes] : before) space.write(name, bytes);
  for (const int milliseconds : {0, 5, 15, 40}) {
    const pid_t process = space.start({"update", "--write", "-j", "1"});
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    ::kill(process, SIGTERM);
    int status = 0;
    ::waitpid(process, &status, 0);
    const auto after = space.readAll();
    ASSERT_EQ(after.size(), before.size());
    const bool isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    // Before the program catches the signal, the signal kills it.
    EXPECT_TRUE(isDone || WIFSIGNALED(status) || WEXITSTATUS(status) == 143) << status;
    for (const auto& [name, bytes] : after) {
      EXPECT_TRUE(bytes == updated.at(name) || (!isDone && bytes == before.at(name))) << name;
    }
    for (const auto& [name, bytes] : before) space.write(name, bytes);
  }
}

TEST(Writing, FullStandardOutputIsAnError) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  const auto result = space.run({"sh", "-c", programPath() + " update > /dev/full"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("standard output could not be written"), std::string::npos);
}

}  // namespace
}  // namespace soca::testing
