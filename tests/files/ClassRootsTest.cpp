#include "files/targets/ClassRoots.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <filesystem>

#include "tests/cli/ProgramRunner.h"

namespace soca::cli {
namespace {

struct PackageCase {
  std::vector<std::string> roots;
  const char* folder;
  // "root number:prefix", or null.
  const char* package;
};

TEST(ClassRoots, TheFirstRootWithAClassNameIsUsed) {
  const PackageCase table[] = {
      {{"/r"}, "/r", "0:"},
      {{"/r"}, "/r/a/b", "0:a.b."},
      {{"/r"}, "/rest/a", nullptr},
      {{"/r"}, "/", nullptr},
      {{"/"}, "/r/a", "0:r.a."},
      {{"/r"}, "/r/my-dir", nullptr},
      {{"/r"}, "/r/a/1b", nullptr},
      {{"/r"}, "/r/\u00e4/_b", nullptr},
      {{"/r"}, "/r/\u00e4/b_1", "0:\u00e4.b_1."},
      {{"/r", "/r/a"}, "/r/a/b", "0:a.b."},
      {{"/r/a", "/r"}, "/r/a/b", "0:b."},
      {{"/r", "/r/my-dir"}, "/r/my-dir/p", "1:p."},
      {{"/other", "/r"}, "/r/p", "1:p."},
  };
  for (const PackageCase& row : table) {
    const auto package = ClassRoots(row.roots).packageOf(row.folder);
    const std::string text =
        package ? std::to_string(package->root) + ':' + package->prefix : "none";
    EXPECT_EQ(text, row.package == nullptr ? "none" : row.package) << row.folder;
  }
}

// The output of `update --check` for the arguments, in one line.
std::string classesOf(const testing::Workspace& space, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"update", "--check"});
  std::string out = space.soca(arguments).out;
  std::ranges::replace(out, '\n', ' ');
  return out;
}

TEST(Targets, SelectClasses) {
  const testing::Workspace space;
  for (const char* file : {"one/a/B.vlm", "two/a/B.vlm", "two/a/C.vlm", "two/a.vlm", "two/b/D.vlm",
                           "two/b_/E.vlm", "two/B/F.vlm", "two/my-dir/p/G.vlm", "two/.git/H.vlm"}) {
    space.write(file, testing::outdatedClass(std::filesystem::path(file).stem().string()));
  }
  std::filesystem::create_symlink("two", space.path() / "link");
  std::filesystem::create_symlink("..", space.path() / "two/a/up");
  const auto expect = [&](const std::vector<std::string>& arguments, const char* classes) {
    EXPECT_EQ(classesOf(space, arguments), classes) << arguments.back();
  };
  const char* all = "B.F a a.B a.C b.D b_.E ";
  // Names are in byte order, whatever their order in the folder; links and invalid names are
  // omitted.
  expect({"-p", "two"}, all);
  expect({"-p", "link"}, all);
  expect({"-p", "two", "link"}, all);
  expect({"-p", "link", "two/a"}, "a.B a.C ");
  // Names, files and folders in any order, each class once.
  expect({"-p", "two", "b.D", "two/a/C.vlm", "two/a", "b.D", "a"}, "b.D a.C a.B a ");
  // An earlier root hides the classes of a later one.
  expect({"-p", "one", "-p", "two", "two/a"}, "a.C ");
  expect({"-p", "one", "-p", "two"}, "a.B B.F a a.C b.D b_.E ");
  // Roots inside roots.
  expect({"-p", "two", "-p", "two/my-dir", "two/my-dir", "two/b"}, "p.G b.D ");
  expect({"-p", "two/a", "-p", "two", "two/a", "two/b"}, "B C b.D ");
  const auto hidden = space.soca({"update", "-p", "one", "-p", "two", "two/a/B.vlm"});
  EXPECT_EQ(hidden.exitCode, 2);
  EXPECT_NE(hidden.err.find("soca:HiddenFile"), std::string::npos);
  EXPECT_NE(hidden.err.find("one/a/B.vlm'."), std::string::npos) << hidden.err;
  // A hidden file that a walk finds is no error, even if the class is named.
  const auto named = space.soca({"update", "-p", "one", "-p", "two", "a.B", "two/a"});
  EXPECT_EQ(named.exitCode, 0) << named.err;
}

}  // namespace
}  // namespace soca::cli
