// The command `undo`, and the folder of the program's state.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "files/writing/Journal.h"

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

// The time of the last run in the list.
std::string listedTime(const Workspace& space) {
  const std::string list = space.soca({"undo", "--list"}).out;
  return list.substr(list.find('\n') + 7, 19);
}

TEST(Undo, RestoresAllFilesExceptThoseChangedSince) {
  const Workspace space;
  for (const char* name : {"A", "B", "C"}) {
    space.write("pkg/" + std::string(name) + ".vlm", outdatedClass(name));
  }
  const fs::path a = space.path() / "pkg/A.vlm";
  ::chmod(a.c_str(), 0604);
  const auto time = fs::last_write_time(a) - std::chrono::hours(1000) + std::chrono::nanoseconds(7);
  fs::last_write_time(a, time);
  const auto before = space.readAll();
  const auto written = space.soca({"update", "--write"});
  EXPECT_NE(written.err.find("this was run 1; 'soca undo 1' puts the files back"),
            std::string::npos);
  const auto after = space.readAll();
  EXPECT_EQ(after.size(), before.size());
  space.write("pkg/B.vlm", "% mine\n");
  ::chmod((space.path() / "pkg/C.vlm").c_str(), 0600);

  const auto seen = space.readAll();
  const auto dry = space.soca({"undo", "--dry-run"});
  EXPECT_EQ(dry.exitCode, 2);
  EXPECT_EQ(space.readAll(), seen);
  const auto undone = space.soca({"undo"});
  EXPECT_EQ(undone.exitCode, 2);
  EXPECT_EQ(undone.out, "");
  const std::string start = "soca: run 1 of " + listedTime(space) + ": 3 files in '" +
                            (space.path() / "pkg").string() + "'\n";
  EXPECT_EQ(
      undone.err,
      start +
          "soca: 'pkg/B.vlm' is left as it is: it changed since the run wrote it\n"
          "soca: 'pkg/C.vlm' is left as it is: its permissions changed since the run wrote it\n"
          "soca: run 1: 1 file is as it was before, 2 are left; once nothing is in the way, "
          "'soca undo 1' goes on\n");
  EXPECT_EQ(dry.err,
            start +
                "soca: 'pkg/B.vlm' would be left as it is: it changed since the run wrote it\n"
                "soca: 'pkg/C.vlm' would be left as it is: its permissions changed since the run "
                "wrote it\n"
                "soca: run 1: 1 file would be as it was before, 2 would be left\n");
  EXPECT_EQ(space.read("pkg/B.vlm"), "% mine\n");
  EXPECT_EQ(space.read("pkg/C.vlm"), after.at("pkg/C.vlm"));
  EXPECT_EQ(fs::last_write_time(a), time);
  EXPECT_EQ(fs::status(a).permissions(), fs::perms(0604));
  EXPECT_NE(space.soca({"undo", "--list"}).out.find("3  undone but for 2"), std::string::npos);

  space.write("pkg/A.vlm", "% no longer the run's business\n");
  space.write("pkg/B.vlm", after.at("pkg/B.vlm"));
  ::chmod((space.path() / "pkg/C.vlm").c_str(), 0644);
  EXPECT_EQ(space.soca({"undo", "1"}).exitCode, 0);
  EXPECT_EQ(space.read("pkg/B.vlm"), before.at("pkg/B.vlm"));
  EXPECT_EQ(space.read("pkg/C.vlm"), before.at("pkg/C.vlm"));
  const auto list = space.soca({"undo", "--list"});
  EXPECT_EQ(list.out.substr(0, list.out.find('\n')),
            " RUN  TIME                   FILES  STATE                FOLDER");
  EXPECT_NE(list.out.find("3  undone               " + (space.path() / "pkg").string() + "\n"),
            std::string::npos)
      << list.out;
}

TEST(Undo, OfRunsThatCannotBeUndone) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  EXPECT_EQ(space.soca({"undo"}).err, "soca: there is no run to undo\n");
  EXPECT_EQ(space.soca({"undo", "--list"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(space.statePath() / "soca/runs/1"));
  space.soca({"update", "--write"});
  space.soca({"update", "--write"});
  EXPECT_FALSE(fs::exists(space.statePath() / "soca/runs/2")) << "nothing was left to change";
  EXPECT_EQ(space.soca({"undo"}).exitCode, 0);
  fs::create_directories(space.statePath() / "soca/runs/007");
  fs::create_directories(space.statePath() / "soca/runs/1/extra");
  const std::vector<std::pair<std::vector<std::string>, std::string_view>> cases = {
      {{"undo"}, "run 1 is undone already"},
      {{"undo", "1"}, "run 1 is undone already"},
      {{"undo", "2"}, "there is no run 2"},
      {{"undo", "0"}, "'0' is no number of a run"},
      {{"undo", "-1"}, "'-1' is no number of a run"},
      {{"undo", "1", "2"}, "takes one run at a time"},
      {{"undo", ".", "A.vlm"}, "takes one file or folder at a time"},
      {{"undo", "B.vlm"}, "'B.vlm' is no number of a run, and no file or folder"},
      {{"undo", "--list", "--dry-run"}, "cannot be combined"},
      {{"undo", "--list", "--forget"}, "cannot be combined"},
      {{"undo", "--forget"}, "--forget needs the numbers of runs"},
      {{"undo", "--forget", "A.vlm"}, "'A.vlm' is no number of a run"},
      {{"undo", "--list", "1"}, "takes no argument"},
      {{"undo", "--forget", "7"}, "there is no run 7"},
      {{"undo", "--forget", "1", "2"}, "there is no run 2"},
      {{"undo", "--forget", "1"}, "runs/1.old' can't be removed: Directory not empty\n"},
  };
  for (const auto& [arguments, message] : cases) {
    const auto result = space.soca(arguments);
    EXPECT_EQ(result.exitCode, 2) << message;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
  }
  EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
}

// As if the run had been killed when all its files were written.
void interrupt(const Workspace& space, int run) {
  const std::string folder = space.statePath() / "soca/runs" / std::to_string(run);
  RunState state = readState(folder);
  state.stage = RunState::StageType::running;
  state.wasDone = false;
  StateFile(folder).write(state);
}

// Two trees with a run each; both have two classes, in folders of their own.
class UndoInFolders : public ::testing::Test {
 protected:
  UndoInFolders() {
    for (const char* tree : {"one", "two"}) {
      for (const char* file : {"/a/A.vlm", "/b/B.vlm"}) {
        space_.write(tree + std::string(file), outdatedClass(std::string(file).substr(3, 1)));
      }
      space_.soca({"update", "--write", "-p", tree});
    }
    fs::create_directory(space_.path() / "other");
    updated_ = space_.readAll();
  }

  ProgramResult socaIn(const std::string& folder, const std::string& arguments) const {
    return space_.run({"sh", "-c", "cd " + folder + " && exec " + programPath() + " " + arguments});
  }
  // The files that are as they were before the runs.
  std::string restored() const {
    std::string names;
    for (const auto& [name, bytes] : space_.readAll()) {
      if (bytes != updated_.at(name)) names += name + " ";
    }
    return names;
  }

  const Workspace space_;
  std::map<std::string, std::string> updated_;
};

TEST_F(UndoInFolders, TakesTheLastRunThere) {
  const std::string here = space_.path();
  const struct {
    const char* what;
    std::string folder;
    std::string arguments;
    std::string message;
    std::string restored;
  } table[] = {
      {"a folder without a run", "other", "undo",
       "no run that is known has changed a file in '" + here + "/other'; run 2 changed files in '" +
           here + "/two', run 1 in '" + here + "/one'; give the number",
       ""},
      {"a folder that was deleted", "other && mkdir ../gone && cd ../gone && rmdir ../gone", "undo",
       "soca: the current folder does not exist any more\n", ""},
      {"no file of the run there", "other", "undo 2 ../one",
       "run 2 changed no file in '" + here + "/one', but some in '" + here + "/two'", ""},
      {"a dry run", "one", "undo --dry-run", "run 1: 2 files would be as they were before\n", ""},
      {"a link in place of a file",
       "one && mv a/A.vlm $XDG_STATE_HOME && ln -s $XDG_STATE_HOME/A.vlm a", "undo a",
       "'a/A.vlm' is left as it is: it is no regular file any more\n", ""},
      {"a folder of the run", "one && mv $XDG_STATE_HOME/A.vlm a", "undo a",
       ": 1 file in '" + here + "/one/a'\n", "one/a/A.vlm "},
      {"the same again", "one", "undo a", "run 1 is undone already in '" + here + "/one/a'", ""},
      {"a folder that is gone", "one && mv b $XDG_STATE_HOME", "undo ./b",
       "run 1: 0 files are as they were before, 1 is left", ""},
      {"the rest, from below", "one && mv $XDG_STATE_HOME/b . && cd b", "undo",
       "run 1: 1 file is as it was before\n", "one/a/A.vlm one/b/B.vlm "},
      {"a misspelt folder", ".", "undo tow/b", "no file or folder; did you mean 'two/b'?; 'soca",
       ""},
      {"one file of another run", "one", "undo ../two/b/B.vlm", "run 2: 1 file is",
       "one/a/A.vlm one/b/B.vlm two/b/B.vlm "},
      {"all trees", ".", "undo", "run 2: 1 file is",
       "one/a/A.vlm one/b/B.vlm two/a/A.vlm two/b/B.vlm "},
      {"a folder as the state", "$XDG_STATE_HOME/soca/runs/2 && rm state && mkdir state",
       "undo --forget 2", "runs/2.old/state' can't be removed: Is a directory\n", ""},
      {"no higher number", ". && mkdir $XDG_STATE_HOME/soca/runs/4294967295",
       "update --write -p one",
       "but '" + space_.statePath().string() + "/soca/runs/4294967295' has", ""},
  };
  std::string before;
  for (const auto& row : table) {
    const auto result = socaIn(row.folder, row.arguments);
    EXPECT_NE(result.err.find(row.message), std::string::npos) << row.what << ": " << result.err;
    if (!row.restored.empty()) before = row.restored;
    EXPECT_EQ(restored(), before) << row.what;
  }
}

TEST_F(UndoInFolders, ADryRunSaysThatARunWaits) {
  interrupt(space_, 2);
  const std::string waits = "soca: warning: run 2 was interrupted; ";
  const auto update = socaIn(".", "update -q -p one");
  EXPECT_NE(update.err.find(waits + "the next run with --write, or 'soca undo', first puts"),
            std::string::npos)
      << update.err;
  const auto undo = socaIn("one", "undo --dry-run");
  EXPECT_NE(undo.err.find(waits + "'soca undo' first puts its files back\nsoca: run 1 of "),
            std::string::npos)
      << undo.err;
  EXPECT_EQ(restored(), "");
  const auto undone = socaIn("one", "undo");
  EXPECT_EQ(restored(), "one/a/A.vlm one/b/B.vlm two/a/A.vlm two/b/B.vlm ") << undone.err;
  EXPECT_EQ(socaIn(".", "update -p one").err.find("interrupted"), std::string::npos);
}

TEST(Undo, TheStateFolder) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  space.write("file", "");
  const std::string here = space.path();
  const std::vector<std::tuple<const char*, std::string, std::string, std::string>> cases = {
      // what it shows, HOME, XDG_STATE_HOME, the message or the folder
      {"neither variable", "", "", "neither XDG_STATE_HOME nor HOME is an absolute path"},
      {"relative paths", "home", "state", "neither XDG_STATE_HOME nor HOME is an absolute path"},
      {"a file in place of the folder", here, here + "/file",
       "file/soca' for the journal can't be made"},
      {"home", here + "/home", "state", "home/.local/state/soca"},
      {"the variable first", here + "/none", here + "/state/deep", "state/deep/soca"},
  };
  for (const auto& [what, home, state, expected] : cases) {
    SCOPED_TRACE(what);
    const auto result = space.run({"env", "HOME=" + home, "XDG_STATE_HOME=" + state, programPath(),
                                   "update", "--write", "A"});
    if (result.exitCode != 0) {
      EXPECT_NE(result.err.find(expected), std::string::npos) << result.err;
      EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
      continue;
    }
    EXPECT_EQ(fs::status(space.path() / expected).permissions(), fs::perms(0700));
    EXPECT_NE(space.read("A.vlm"), outdatedClass("A"));
    space.write("A.vlm", outdatedClass("A"));
  }
}

TEST(Undo, WhatIsInTheStateFolderIsLookedAtFirst) {
  constexpr const char* run = "state/soca/runs/1";
  const struct {
    const char* what;
    // What happens after a run, in `state/soca`.
    std::string change;
    // What `undo` prints; empty if it undoes the run.
    std::string message;
  } table[] = {
      {"others can write", "chmod 777 . runs runs/1", ""},
      {"a link in place of the folder", "mv runs ../away && ln -s ../away runs",
       "since it is a link"},
      {"a run that is a link", "mv runs/1 away && ln -s ../away runs/1", "since it is a link"},
      {"a journal that is a link", "mv runs/1/state away && ln -s ../../away runs/1/state",
       "it is a link"},
      {"a pipe as the journal", "rm runs/1/before && mkfifo runs/1/before", "is no regular file"},
      {"a pipe as the state", "rm runs/1/state && mkfifo runs/1/state", "is no regular file"},
      {"a pipe as the lock", "rm lock && mkfifo lock", "is no regular file"},
      {"another user's folder", "chown 12345 .", "belongs to another user"},
      {"another user's journal", "chown 12345 runs/1/before", "belongs to another user"},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.what);
    if (row.change.starts_with("chown") && ::geteuid() != 0) continue;
    const Workspace space;
    space.write("A.vlm", outdatedClass("A"));
    const auto soca = [&](const std::string& arguments) {
      return space.run(
          {"sh", "-c", "XDG_STATE_HOME=$PWD/state " + programPath() + " " + arguments});
    };
    ASSERT_EQ(soca("update --write").exitCode, 0);
    ASSERT_EQ(space.run({"sh", "-c", "cd state/soca && " + row.change}).exitCode, 0);
    const auto list = soca("undo --list");
    const auto result = soca("undo");
    EXPECT_EQ(result.exitCode, row.message.empty() ? 0 : 2);
    EXPECT_EQ(space.read("A.vlm") == outdatedClass("A"), row.message.empty());
    EXPECT_NE(result.err.find(row.message), std::string::npos) << result.err;
    EXPECT_EQ(list.exitCode == 2 || list.err.find(row.message) != std::string::npos, true)
        << list.err;
    if (!row.message.empty()) continue;
    for (const char* folder : {"state/soca", "state/soca/runs", run}) {
      EXPECT_EQ(fs::status(space.path() / folder).permissions(), fs::perms(0700)) << folder;
    }
  }
}

TEST_F(UndoInFolders, ADamagedRunIsReportedAndForgotten) {
  const std::string runs = space_.statePath() / "soca/runs/";
  const std::string temporary =
      temporaryPath(space_.path() / "two/b/B.vlm", Journal(runs + "2").token(), 1);
  fs::resize_file(runs + "2/state", fs::file_size(runs + "2/state") - 1);
  const std::string fault =
      "the file 'state' of its journal is damaged; 'soca undo --forget 2' names its files and "
      "removes the journal";
  const std::string warning =
      "soca: warning: run 2 can be neither undone nor repaired: " + fault + "\n";
  const auto list = socaIn(".", "undo --list");
  EXPECT_NE(list.out.find("   2  ?                          ?  damaged "), std::string::npos)
      << list.out;
  EXPECT_EQ(list.err, warning);
  EXPECT_EQ(socaIn(".", "update --write -q -p one").err.substr(0, warning.size()), warning);
  for (const char* arguments : {"undo", "undo --dry-run", "undo 2", "undo 2 b"}) {
    const auto refused = socaIn("two", arguments);
    EXPECT_EQ(refused.exitCode, 2) << arguments;
    EXPECT_NE(refused.err.find("soca: run 2 can't be undone: " + fault), std::string::npos)
        << refused.err;
  }
  EXPECT_EQ(restored(), "");
  const std::string names =
      (space_.path() / "two/a/A.vlm\n").string() + (space_.path() / "two/b/B.vlm\n").string();
  EXPECT_EQ(socaIn(".", "undo --forget 2 --dry-run").out, names);
  EXPECT_TRUE(fs::exists(runs + "2"));
  EXPECT_EQ(socaIn(".", "undo --forget 3").exitCode, 2);
  space_.write(fs::relative(temporary, space_.path()), "new");
  const auto forgotten = socaIn(".", "undo --forget 2 2");
  EXPECT_EQ(forgotten.exitCode, 0);
  EXPECT_EQ(forgotten.out, names);
  EXPECT_EQ(forgotten.err,
            "soca: run 2: 1 temporary file that it had left is removed\n"
            "soca: run 2 is forgotten, and can't be undone any more\n");
  EXPECT_FALSE(fs::exists(temporary));
  EXPECT_EQ(std::distance(fs::directory_iterator(runs), {}), 1);
  EXPECT_EQ(socaIn(".", "undo").exitCode, 0);
  EXPECT_EQ(restored(), "one/a/A.vlm one/b/B.vlm ");
}

TEST_F(UndoInFolders, WithADamagedOldTextOnlyTheOthersAreRestored) {
  const std::string path = space_.statePath() / "soca/runs/2/before";
  std::fstream file(path);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  file.seekp(static_cast<std::streamoff>(bytes.str().find("classdef A")));
  file << "CLASSDEF" << std::flush;
  EXPECT_NE(
      socaIn("two", "undo")
          .err.find("an old text in its journal is damaged; 'soca undo 2 FILE' puts back a file"),
      std::string::npos);
  EXPECT_NE(socaIn(".", "undo --list").out.find("2  damaged"), std::string::npos);
  EXPECT_EQ(socaIn("two", "undo a").exitCode, 2);
  EXPECT_EQ(restored(), "");
  EXPECT_EQ(socaIn("two", "undo b").exitCode, 0);
  EXPECT_EQ(restored(), "two/b/B.vlm ");
}

TEST_F(UndoInFolders, ARepairThatFailsIsReportedOnce) {
  interrupt(space_, 2);
  const std::string journal = space_.statePath() / "soca/runs/2";
  const std::string temporary =
      temporaryPath(space_.path() / "two/a/A.vlm", Journal(journal).token(), 0);
  fs::create_directory(temporary);
  const std::string again = "; this is tried again with the next run\n";
  const std::string failures = "soca: '" + temporary +
                               "': it could not be removed: Is a directory" + again + "soca: '" +
                               (space_.path() / "two/a/A.vlm").string() +
                               "': no new file could be made beside it: File exists" + again;
  space_.write("one/a/A.vlm", outdatedClass("A"));
  EXPECT_EQ(socaIn(".", "update --write -q -p one").err,
            "soca: run 2 was interrupted; 1 file that it had changed is as before the run now\n" +
                failures + "soca: looked at 2 classes: 1 changed, 1 stays as it is\n");
  EXPECT_EQ(socaIn("other", "undo 2").err,
            "soca: run 2 was interrupted; not everything that it left could be put back or "
            "removed\n" +
                failures);
  fs::remove(temporary);
  EXPECT_EQ(socaIn("other", "undo 2").err,
            "soca: run 2 was interrupted; 1 file that it had changed is as before the run now\n");
}

constexpr int mountIsRefused = 99;

// Runs the commands after a mount that only they see.
ProgramResult runWithMount(const Workspace& space, const std::string& mount,
                           const std::string& commands) {
  auto result = space.run(
      {"unshare", "-rm", "sh", "-c", "{ " + mount + "; } 2>/dev/null || exit 99; " + commands});
  // The shells and `unshare` return this if a mount is not available or not allowed.
  if (result.exitCode == 127 || result.err.starts_with("unshare:")) {
    result.exitCode = mountIsRefused;
  }
  return result;
}

TEST(Faults, AFullDiskDamagesNoFile) {
  const Workspace space;
  for (const char* name : {"A", "B", "C"}) {
    space.write("tree/" + std::string(name) + ".vlm", outdatedClass(name));
  }
  // Has room for the three classes and one new file.
  const auto result = runWithMount(
      space, "mkdir small && mount -t tmpfs -o size=16k tmpfs small && cp tree/* small",
      programPath() +
          " update --write -p small; code=$?; cp -a small/. result; "
          "exit $code");
  if (result.exitCode == mountIsRefused) GTEST_SKIP() << "mounting is not allowed";
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("1 changed, 0 stay as they are, 2 failed"), std::string::npos)
      << result.err;
  EXPECT_NE(space.read("result/A.vlm"), outdatedClass("A"));
  EXPECT_EQ(space.read("result/B.vlm"), outdatedClass("B"));
  EXPECT_EQ(space.read("result/C.vlm"), outdatedClass("C"));
  EXPECT_EQ(space.readAll().size(), 6);
}

TEST(Faults, AReadOnlyFolderFailsItsClassesOnly) {
  const Workspace space;
  space.write("fixed/A.vlm", outdatedClass("A"));
  space.write("B.vlm", outdatedClass("B"));
  const auto result =
      runWithMount(space, "mount --bind fixed fixed && mount -o remount,bind,ro fixed",
                   programPath() + " update --write");
  if (result.exitCode == mountIsRefused) GTEST_SKIP() << "mounting is not allowed";
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("no new file could be made beside it: Read-only"), std::string::npos)
      << result.err;
  EXPECT_EQ(space.read("fixed/A.vlm"), outdatedClass("A"));
  EXPECT_NE(space.read("B.vlm"), outdatedClass("B"));
  EXPECT_EQ(space.soca({"undo"}).exitCode, 0);
  EXPECT_EQ(space.read("B.vlm"), outdatedClass("B"));
}

TEST(Faults, WithoutAJournalNoFileIsChanged) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  const auto result =
      space.run({"sh", "-c", "ulimit -f 1; exec " + programPath() + " update --write 2>&1 | cat"});
  EXPECT_NE(result.out.find("could not be written: File too large"), std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("nothing was written"), std::string::npos) << result.out;
  EXPECT_EQ(space.readAll().size(), 1);
  EXPECT_EQ(space.read("A.vlm"), outdatedClass("A"));
  EXPECT_EQ(space.soca({"undo"}).err, "soca: there is no run to undo\n");
}

}  // namespace
}  // namespace soca::testing
