#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "files/targets/GitLibrary.h"
#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

// Ignores the user's own settings.
const std::string prelude =
    "export HOME=$PWD/.. GIT_CONFIG_GLOBAL=/dev/null GIT_AUTHOR_NAME=a GIT_AUTHOR_EMAIL=a@b "
    "GIT_COMMITTER_NAME=a GIT_COMMITTER_EMAIL=a@b\n"
    "commit() { git add -A . && git commit -qm more; }\n"
    "begin() { git init -q . && commit; }\n"
    "soca() { " +
    programPath() + " \"$@\"; }\n";

// Provides a library that cannot be loaded under each name that the program tries.
const std::string withoutLibrary =
    "mkdir lib; for n in 9 8 7 6 5 4 3 1; do echo none > lib/libgit2.so.1.$n; done\n"
    "export LD_LIBRARY_PATH=$PWD/lib\n";

ProgramResult runScript(const Workspace& space, const std::string& script) {
  return space.run({"sh", "-c", prelude + script});
}

class Git : public ::testing::Test {
 protected:
  void SetUp() override {
    if (gitLibrary() == nullptr) GTEST_SKIP() << "libgit2 is not installed";
    if (Workspace().run({"sh", "-c", "git --version"}).exitCode != 0) {
      GTEST_SKIP() << "git is not installed";
    }
  }
};

struct WriteCase {
  const char* what;
  // Run in the folder of an outdated class; ends with the run of the program.
  std::string script;
  // The reason why the class is refused; empty if it is written.
  const char* refusal;
};

TEST_F(Git, FilesThatGitCannotRestoreAreNotWritten) {
  const char* changed = "not committed to git; commit or stash them, or give --allow-dirty";
  const char* untracked = "it is not in git, which could not bring it back";
  const std::string write = "\nsoca update --write p.A";
  const WriteCase table[] = {
      {"no repository", "", ""},
      {"committed", "begin", ""},
      {"changed", "begin; echo >> p/A.vlm", changed},
      {"changed and staged", "begin; echo >> p/A.vlm; git add .", changed},
      {"staged, and changed back",
       "begin; echo >> p/A.vlm; git add .; git show HEAD:p/A.vlm > p/A.vlm", changed},
      {"stashed", "begin; echo >> p/A.vlm; git stash -q", ""},
      {"another file changed", "begin; echo > p/B; echo > C; git add C", ""},
      {"only touched", "begin; touch -d 2001-01-01 p/A.vlm", ""},
      {"no commit yet", "git init -q .; git add .", changed},
      {"to be added", "begin; git rm -q --cached p/A.vlm; git commit -qm x; git add -N .", changed},
      {"untracked", "git init -q .", untracked},
      {"ignored", "echo p > .gitignore; begin", untracked},
      {"tracked but ignored", "begin; echo p > .gitignore", ""},
      {"other line ends in the index",
       "git init -q .; git config core.autocrlf true; sed -i 's/$/\\r/' p/A.vlm; commit 2>&1", ""},
      {"a conflict",
       "begin; git checkout -qb b; echo >> p/A.vlm; commit; git checkout -q -; echo % >> p/A.vlm; "
       "commit; git merge -q b; git show HEAD:p/A.vlm > p/A.vlm",
       changed},
      {"a work tree of its own",
       "git init -q main; cd main; mv ../p .; commit; git worktree add -q ../w; cd ../w; echo >> "
       "p/A.vlm",
       changed},
      {"a submodule",
       "(cd p; begin); git init -q .; git -c protocol.file.allow=always submodule --quiet add ./p "
       "p; commit; echo >> p/A.vlm",
       changed},
      {"a repository in another one's ignored folder", "(cd p; begin); echo p > .gitignore; begin",
       ""},
      {"a bare repository", "git init -q --bare b.git; mv p b.git; cd b.git", ""},
      {"a folder that is no repository", "mkdir .git", "has no HEAD, so it is no repository"},
      {"no objects", "begin; rm -r .git/objects", "has no objects, so it is no repository"},
      {"a repository that is gone", "echo gitdir: gone > .git",
       "names 'gone', which is no folder; mend or remove it"},
      {"no work tree", "begin; git config core.bare true; echo >> p/A.vlm", "has no work tree"},
      {"a work tree elsewhere", "begin; git config core.worktree $PWD/../o; mkdir ../o",
       "has its work tree in '/"},
      {"a .git without a name", "echo > .git", "names no folder of git"},
      {"a link to a file that is tracked",
       "begin; mv p/A.vlm B.vlm; ln -s ../B.vlm p/A.vlm; commit", ""},
      {"a link to a file elsewhere",
       "git init -q o; mv p/A.vlm o/B.vlm; ln -s ../o/B.vlm p/A.vlm; begin 2> /dev/null",
       untracked},
      {"a damaged index", "begin; echo > .git/index", "can't be told: "},
      {"no library", "begin" + ("\n" + withoutLibrary),
       "libgit2, which reads git repositories, is"},
      {"no library and no repository", withoutLibrary, ""},
      {"a repository of another user",
       "[ $(id -u) = 0 ] || exit 77; begin; chown -R 12345 p; chmod 755 ..; soca() {\n"
       "setpriv --reuid 12345 --clear-groups " +
           programPath() + " \"$@\"; }; soca --version || exit 77",
       "belongs to another user; if you trust it, run 'git config --global --add safe.directory /"},
  };
  for (const WriteCase& row : table) {
    const Workspace space;
    space.write("t/p/A.vlm", outdatedClass("A"));
    const auto result = runScript(space, "cd t\n" + row.script + write);
    if (result.exitCode == 77) continue;
    const bool isRefused = *row.refusal != 0;
    EXPECT_EQ(result.exitCode, isRefused ? 2 : 0) << row.what << "\n" << result.err;
    EXPECT_NE(result.err.find(row.refusal), std::string::npos) << row.what << "\n" << result.err;
    EXPECT_NE(result.err.find(isRefused ? "0 changed, 0 stay as they are, 1 refused" : "1 changed"),
              std::string::npos)
        << row.what << "\n"
        << result.err;
    if (!isRefused) continue;
    const Workspace other;
    other.write("t/p/A.vlm", outdatedClass("A"));
    const auto allowed = runScript(other, "cd t\n" + row.script + write + " --allow-dirty");
    EXPECT_EQ(allowed.exitCode, 0) << row.what << "\n" << allowed.err;
  }
}

TEST_F(Git, TheOthersAreWrittenAsTheDryRunReports) {
  const Workspace space;
  for (const char* name : {"A", "B", "C"}) {
    space.write(std::string("t/") + name + ".vlm", outdatedClass(name));
  }
  space.write("t/D.vlm", "classdef D < velum.System\nend\n");
  space.write("t/p/E.vlm", outdatedClass("E"));
  const auto dry = runScript(
      space,
      "cd t; begin; for f in A C D; do echo >> $f.vlm; done; soca update -v --no-ignore && "
      "soca update -v");
  EXPECT_EQ(dry.exitCode, 0);
  const std::string note = "note: --write would refuse it: it has changes that are not committed";
  EXPECT_NE(dry.err.find("A.vlm: " + note), std::string::npos) << dry.err;
  EXPECT_EQ(dry.err.find("D.vlm: " + note), std::string::npos) << dry.err;
  EXPECT_NE(dry.err.find("soca: warning: --write would refuse 2 of these"), std::string::npos);
  const auto written = runScript(space, "cd t; soca update --write");
  EXPECT_EQ(written.exitCode, 2);
  EXPECT_NE(written.err.find("5 classes: 2 changed, 1 stays as it is, 2 refused"),
            std::string::npos)
      << written.err;
  EXPECT_NE(space.read("t/B.vlm"), outdatedClass("B"));
  EXPECT_EQ(space.read("t/A.vlm"), outdatedClass("A") + "\n");
}

struct WalkCase {
  const char* what;
  std::string script;
  // The output of `update --check`, in one line.
  const char* classes;
};

TEST_F(Git, AWalkOmitsIgnoredFiles) {
  const std::string run = "\nsoca update --check ";
  const std::string rules = "printf 'build\\n*_old.vlm\\n!keep_old.vlm\\n/q/C*\\n' > .gitignore; ";
  const WalkCase table[] = {
      {"no repository", rules + run, "A b_old build.G keep_old q.C q.D "},
      {"nothing is committed", rules + "git init -q ." + run, "A keep_old q.D "},
      {"what is tracked is not ignored", "begin; " + rules + run,
       "A b_old build.G keep_old q.C q.D "},
      {"tracked files in an ignored folder",
       rules + "cp A.vlm build/H.vlm; git init -q .; git add -f build/G.vlm" + run,
       "A build.G keep_old q.D "},
      {"everything", rules + "begin" + run + "--no-ignore", "A b_old build.G keep_old q.C q.D "},
      {"the repository is above the root", rules + "begin; cd q" + run, "D "},
      {"a named folder", rules + "begin" + run + "build q", "build.G q.D "},
      {"a named file", rules + "begin" + run + "b_old.vlm", "b_old "},
      {"an ignored root", rules + "begin" + run + "-p build -p .", "G A keep_old q.D "},
      {"an ignored root in a named folder", rules + "begin" + run + "-p . -p build .",
       "A build.G keep_old q.D "},
      {"rules of a folder", "git init -q .; echo '[CD].vlm' > q/.gitignore" + run,
       "A b_old build.G keep_old "},
      {"rules of the repository alone", "git init -q .; echo q > .git/info/exclude" + run,
       "A b_old build.G keep_old "},
      {"a repository in a folder has its own rules",
       rules + "begin; (cd q; git init -q .; echo D.vlm > .gitignore)" + run, "A keep_old q.C "},
      {"a repository in an ignored folder", rules + "(cd build; git init -q .); begin" + run,
       "A keep_old q.D "},
      {"what others have in their rules and settings",
       "begin; echo 'r.[0-9]*.[0-9]*.[0-9]*.[0-9]*.json' > .gitignore; echo '**/x/**/*.[oa]*' >> "
       ".gitignore; git config core.excludesFile /dev/null; git config mergetool.x.path /dev/tty" +
           run,
       "A b_old build.G keep_old q.C q.D "},
      {"a file in conflict, for which there is a rule",
       "begin; git checkout -qb b; echo >> A.vlm; commit; git checkout -q -; echo % >> A.vlm; "
       "commit; git merge -q b > x; git show HEAD:A.vlm > A.vlm; echo A.vlm > .gitignore" +
           run,
       "A b_old build.G keep_old q.C q.D "},
      {"through a link", rules + "begin; ln -s $PWD ../l; cd ..; soca update --check -p l",
       "A keep_old q.D "},
  };
  for (const WalkCase& row : table) {
    const Workspace space;
    for (const char* file : {"A", "b_old", "keep_old", "q/C", "q/D", "build/G", ".hidden/E"}) {
      space.write("t/" + std::string(file) + ".vlm",
                  outdatedClass(std::filesystem::path(file).filename().string()));
    }
    auto result = runScript(space, "cd t; " + row.script);
    std::ranges::replace(result.out, '\n', ' ');
    EXPECT_EQ(result.out, row.classes) << row.what << "\n" << result.err;
    EXPECT_EQ(result.exitCode, 1) << row.what << "\n" << result.err;
    EXPECT_EQ(result.err.find("warning: git"), std::string::npos) << row.what << result.err;
  }
}

// A pipe would be waited for, and matching would take years.
TEST_F(Git, FilesThatTheLibraryWouldHangOnAreNotOpened) {
  const std::string name(120, 'a');
  const std::string pipe = "begin; mkfifo d; mv d ";
  const struct {
    const char* what;
    std::string script;
    // Whether a walk cannot tell what is ignored; tracked files are not.
    bool matters;
    const char* problem;
  } table[] = {
      {"index", pipe + ".git/index", true, "index' is neither a file nor"},
      {"configuration", pipe + ".git/config", true, "config' is neither a file nor"},
      {"included configuration",
       "begin; mkfifo d; printf '[include] path = \"../d\"\n' >> .git/config", true,
       "d' is neither a file nor"},
      {"configuration that is included in two lines, with a comment",
       "begin; mkfifo d; printf '[include] path = \"../\\\\\\nd\" # x\\n' >> .git/config", true,
       "d' is neither a file nor"},
      {"rules that the configuration names", "begin; mkfifo d; git config core.excludesFile $PWD/d",
       true, "d' is neither a file nor"},
      {"HEAD", pipe + ".git/HEAD", true, "HEAD' is neither a file nor"},
      {"packed references", pipe + ".git/packed-refs", true, "packed-refs' is neither a file nor"},
      {"rules of the repository", pipe + ".git/info/exclude", true,
       "exclude' is neither a file nor"},
      {".git itself", "mkfifo .git", true, ".git' is neither a file nor"},
      {"rules of the top folder", pipe + ".gitignore", false, ".gitignore' is neither a file nor"},
      {"rules of the folder", pipe + "p/.gitignore", false, ".gitignore' is neither a file nor"},
      {"a device", "begin; ln -s /dev/zero .gitignore", false, ".gitignore' is neither a file nor"},
      {"attributes", pipe + ".gitattributes", false, ".gitattributes' is neither a file nor"},
      {"stars", "git init -q .; echo '*a*a*a*a*a*a*ab' > .gitignore", true, "line 1 of '/"},
      {"stars of the repository",
       "git init -q .; printf '*~\n**/a/*a*a*a*a[a]*b' > .git/info/exclude", true, "line 2 of '/"},
      {"stars in attributes", "git init -q .; echo '*a*a*a*a*a*a*ab text' > p/.gitattributes", true,
       "line 1 of '/"},
      {"a reference", "begin; r=.git/$(cut -c6- .git/HEAD); rm $r; mkfifo $r", false,
       "is neither a file nor"},
      {"what HEAD stands for", "begin; echo 'ref: X_HEAD' > .git/HEAD; mkfifo .git/X_HEAD", false,
       "X_HEAD' is neither a file nor"},
      {"a reference behind a link",
       "begin; mv .git/refs/heads h; mkfifo h/d; ln -s ../../h .git/refs/heads", false,
       "d' is neither a file nor"},
      {"an object", "begin; for o in .git/objects/[0-9a-f]*/*; do rm -f $o; mkfifo $o; done", false,
       "is neither a file nor"},
      {"an object of another repository",
       "begin; mkdir ../o; mkfifo ../o/d; printf '../objects\n../../../o\n' > "
       ".git/objects/info/alternates",
       false, "d' is neither a file nor"},
  };
  for (const auto& row : table) {
    const Workspace space;
    space.write("t/p/" + name + ".vlm", outdatedClass(name));
    const auto result =
        runScript(space, "cd t\n" + row.script + "\nsoca() { timeout -s KILL 20 " + programPath() +
                             " \"$@\"; }\nsoca update --check -v p; "
                             "soca update --write p 1>&2");
    EXPECT_EQ(result.exitCode, 2) << row.what << "\n" << result.err;
    EXPECT_EQ(result.out, "p." + name + "\n") << row.what << "\n" << result.err;
    const std::size_t place = result.err.find(row.problem);
    EXPECT_NE(place, std::string::npos) << row.what << "\n" << result.err;
    EXPECT_EQ(result.err.find("warning: git's ignore rules do not hold: ") < place, row.matters)
        << row.what << "\n"
        << result.err;
    EXPECT_NE(result.err.find("whether it is committed to git can't be told: "), std::string::npos)
        << row.what << "\n"
        << result.err;
    EXPECT_EQ(space.read("t/p/" + name + ".vlm"), outdatedClass(name)) << row.what;
  }
}

TEST_F(Git, AWalkContinuesWithoutTheLibrary) {
  const Workspace space;
  space.write("t/A.vlm", outdatedClass("A"));
  space.write("t/p/B.vlm", outdatedClass("B"));
  const auto result = runScript(space, "cd t; echo p > .gitignore\n" + withoutLibrary +
                                           "begin; (cd p; git init -q .); soca update --check . p");
  EXPECT_EQ(result.out, "A\np.B\n");
  const std::string warning = "soca: warning: git's ignore rules do not hold: libgit2, which";
  EXPECT_NE(result.err.find(warning), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(warning), result.err.rfind(warning)) << result.err;
  const auto quiet = runScript(space, "cd t\n" + withoutLibrary + "rm -r .git p/.git; soca update");
  EXPECT_EQ(quiet.err.find("warning: git"), std::string::npos) << quiet.err;
}

TEST(Walk, FollowsOutsideLinksOnceAndOnlyOnRequest) {
  const Workspace space;
  for (const char* file : {"t/p/A.vlm", "t/q/B.vlm", "far/C.vlm", "far/in/D.vlm"}) {
    space.write(file, outdatedClass(std::filesystem::path(file).stem().string()));
  }
  const auto setUp = runScript(space,
                               "cd t; ln -s .. up; ln -s ../../t p/top; ln -s ../q p/q; ln -s "
                               "../far f; ln -s ../../far p/g; "
                               "ln -s ../t/q ../far/back; ln -s . ../far/self; ln -s / p/all; ln "
                               "-s none p/none; soca update --check");
  EXPECT_EQ(setUp.out, "p.A\nq.B\n") << setUp.err;
  EXPECT_EQ(runScript(space, "cd t; soca update --check --no-ignore").out,
            "f.C\nf.in.D\np.A\nq.B\n");
}

TEST(Walk, RefusesPathsThatAreNotUtf8) {
  const Workspace space;
  space.write("t/A.vlm", outdatedClass("A"));
  space.write("t/caf\xe9.vlm", outdatedClass("B"));
  space.write("t/p/d\xe9/in/C.vlm", outdatedClass("C"));
  space.write("t/p/e\xe9/none", "");
  space.write("t/no-class/\xe9.vlm", "");
  const auto walked =
      runScript(space, "cd t; soca update --check; soca update --check . > /dev/null");
  EXPECT_EQ(walked.exitCode, 2);
  EXPECT_EQ(walked.out, "A\n");
  const std::string root = space.path().string() + "/t/";
  EXPECT_NE(walked.err.find("soca:NameNotUtf8: The path '" + root + "caf\u00e9.vlm' is not UTF-8"),
            std::string::npos)
      << walked.err;
  EXPECT_NE(walked.err.find(root + "p/d\u00e9/in/C.vlm'"), std::string::npos) << walked.err;
  EXPECT_NE(walked.err.find("looked at 3 classes: 1 would change, 0 stay as they are, 2 failed\n"),
            std::string::npos)
      << walked.err;
  for (const char* arguments : {"-p .. A.vlm", "-p ../.. .", "", "-p . A"}) {
    const auto here =
        runScript(space, std::string("cd t/p/d*/in; soca update --check ") + arguments);
    EXPECT_EQ(here.exitCode, 2) << arguments;
    EXPECT_NE(here.err.find("p/d\u00e9"), std::string::npos) << here.err;
  }
}

}  // namespace
}  // namespace soca::testing
