// Runs with the wrong roots: they write nothing and name the right ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

std::string derived(const std::string& name, const std::string& superClass) {
  return "classdef " + name + " < " + superClass +
         " & velum.system.mixin.Propagates\n  properties (Logical)\n    Flag = true;\n  end\nend\n";
}

constexpr const char* base = "classdef Base < velum.System\nend\n";

// A package with a class and its superclass, below a folder that ends with a slash.
Files tree(const std::string& folder) {
  return {{folder + "audio/Base.vlm", base},
          {folder + "audio/Mixer.vlm", derived("Mixer", "audio.Base")}};
}

Files operator+(Files left, const Files& right) {
  left.insert(right.begin(), right.end());
  return left;
}

enum class EndType {
  // The run writes all files, and prints nothing about roots.
  writes,
  // It leaves some lists of superclasses as they are, and prints nothing about roots.
  leavesLists,
  // Likewise, and prints a note.
  notes,
  // It has nothing to write, and prints a note.
  isDone,
  // It writes nothing, and its last line is the suggestion.
  stops,
};

struct Layout {
  const char* what;
  Files files;
  std::vector<std::string> arguments;
  EndType end;
  // The roots that are suggested, or the folders of the note.
  std::string roots;
  // The folder in which the program runs.
  std::string folder = ".";
};

void PrintTo(const Layout& layout, std::ostream* out) { *out << layout.what; }

// Superclasses that are nowhere, in a file that comes first, and packages with one that is found.
Files bigTree() {
  std::string list = "far.X";
  for (int i = 0; i < 1001; ++i) list += " & far.X" + std::to_string(i);
  Files files = {{"src/a/Many.vlm", derived("Many", list)}};
  for (int i = 0; i < 100; ++i) {
    files["src/p" + std::to_string(i) + "/M.vlm"] = derived("M", "none.X" + std::to_string(i));
  }
  return files + tree("src/");
}

std::vector<std::string> packagesOfBigTree() {
  std::vector<std::string> packages = {"src/a"};
  for (int i = 0; i < 100; ++i) packages.push_back("src/p" + std::to_string(i));
  packages.push_back("src/audio");
  return packages;
}

std::vector<Layout> layouts() {
  const Files alone = {{"Alone.vlm", derived("Alone", "velum.System")}};
  const Files two = {{"one/a/A.vlm", derived("A", "b.B")},
                     {"two/b/B.vlm", "classdef B < velum.System\nend\n"}};
  return {
      {"the root is the folder", tree("src/"), {"src"}, EndType::stops, "-p src"},
      {"above the folder", tree("a/src/"), {"a/src/audio/"}, EndType::stops, "-p a/src"},
      {"over a link", tree("src/"), {"link"}, EndType::stops, "-p link"},
      {"above a file", tree("src/"), {"src/audio/Mixer.vlm"}, EndType::stops, "-p src"},
      {"below the folder",
       tree("a/src/") + Files{{"a/Alone.vlm", derived("Alone", "velum.System")}},
       {"a"},
       EndType::notes,
       "'a/src'"},
      {"below the current folder", tree("src/") + alone, {}, EndType::notes, "'src'"},
      {"above the current folder", tree("src/"), {}, EndType::stops, "-p ..", "src/audio"},
      {"above the current folder and a folder in it",
       Files{{"ws/util/Base.vlm", base}, {"ws/src/own/X.vlm", derived("X", "util.Base")}} +
           Files{{"ws/src/own/Alone.vlm", derived("Alone", "velum.System")}},
       {"own"},
       EndType::notes,
       "'..'",
       "ws/src"},
      {"a fixture",
       Files{{"tests/fixtures/lib/X.vlm", derived("X", "lib.Base")},
             {"tests/fixtures/lib/Base.vlm", base}} +
           alone,
       {},
       EndType::notes,
       "'tests/fixtures'"},
      {"a big tree", bigTree(), {"src"}, EndType::stops, "-p src"},
      {"many packages", bigTree(), packagesOfBigTree(), EndType::stops, "-p src"},
      {"one root of two",
       tree("src/") + Files{{"tests/Helper.vlm", "classdef Helper < velum.System\nend\n"},
                            {"tests/T.vlm", derived("T", "tests.Helper")}},
       {"src", "tests"},
       EndType::stops,
       "-p src -p ."},
      {"nothing to convert",
       {{"src/audio/Base.vlm", base},
        {"src/audio/Mixer.vlm", "classdef Mixer < velum.System & audio.Base\nend\n"}},
       {"src"},
       EndType::isDone,
       "'src'"},
      {"two roots", two, {"one", "two"}, EndType::stops, "-p one -p two"},
      {"packages of one name in each other",
       tree("src/") + tree("src/audio/"),
       {"src"},
       EndType::stops,
       "-p src"},
      {"packages of one name side by side",
       tree("new/") + tree("old/"),
       {"old"},
       EndType::stops,
       "-p old"},
      {"a p-file",
       {{"src/audio/Base.p", ""}, {"src/audio/Mixer.vlm", derived("Mixer", "audio.Base")}},
       {"src"},
       EndType::stops,
       "-p src"},
      {"one superclass of many",
       tree("") + tree("src/") +
           Files{{"src/x/Far.vlm", derived("Far", "x.Near")},
                 {"src/x/Near.vlm", "classdef Near < velum.System\nend\n"}},
       {"src"},
       EndType::stops,
       "-p src"},
      {"a class by its name", tree("src/"), {"src.audio.Mixer"}, EndType::leavesLists, ""},
      {"a superclass that is not found",
       {{"src/audio/Mixer.vlm", derived("Mixer", "far.Gone")}},
       {"src"},
       EndType::leavesLists,
       ""},
      {"a tree within the tree",
       tree("") + tree("vendor/lib/") +
           Files{{"vendor/lib/x/Far.vlm", derived("Far", "x.Near")},
                 {"vendor/lib/x/Near.vlm", "classdef Near < velum.System\nend\n"}},
       {},
       EndType::notes,
       "'vendor/lib'"},
      {"a root that was given",
       tree("src/") + Files{{"src/audio/Alone.vlm", derived("Alone", "velum.System")}},
       {"-p", ".", "src"},
       EndType::notes,
       "'src'"},
      {"the right root", tree("src/"), {"-p", "src"}, EndType::writes, ""},
      {"the right root is the current folder", tree(""), {}, EndType::writes, ""},
      {"no superclasses at all",
       Files{{"src/Script.vlm", "x = 1;\n"}, {"src/Alone.vlm", "classdef Alone\nend\n"}} +
           Files{{"src/Old.vlm", derived("Old", "velum.System")}},
       {"src"},
       EndType::writes,
       ""},
      {"only superclasses of the environment",
       {{"src/audio/Mixer.vlm", derived("Mixer", "velum.System")}},
       {"src"},
       EndType::writes,
       ""},
      {"the answers of the service", tree("src/"), {"--as-service", "src"}, EndType::writes, ""},
  };
}

std::string lastLine(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

ProgramResult run(const Workspace& space, const Layout& layout, std::vector<std::string> options) {
  std::vector<std::string> command = {"env", "-C", layout.folder, programPath(), "update"};
  command.insert(command.end(), options.begin(), options.end());
  command.insert(command.end(), layout.arguments.begin(), layout.arguments.end());
  return space.run(command);
}

void expectOutput(const Layout& layout, const ProgramResult& result) {
  const bool stops = layout.end == EndType::stops;
  EXPECT_EQ(result.exitCode, stops ? 2 : 0) << result.err;
  EXPECT_EQ(result.err.find("did you mean `") != std::string::npos, stops) << result.err;
  EXPECT_TRUE(!stops || lastLine(result.err).ends_with("; did you mean `" + layout.roots + "`?"))
      << result.err;
  const bool hasNote = layout.end == EndType::notes || layout.end == EndType::isDone;
  EXPECT_EQ(result.err.find("soca: note: ") != std::string::npos, hasNote) << result.err;
  EXPECT_NE(result.err.find(hasNote ? "under " + layout.roots + ", which" : ""), std::string::npos)
      << result.err;
}

class RootGuard : public ::testing::TestWithParam<Layout> {};

TEST_P(RootGuard, LooksBeforeItWrites) {
  const Layout layout = GetParam();
  SCOPED_TRACE(layout.what);
  const Workspace space;
  for (const auto& [name, text] : layout.files) space.write(name, text);
  fs::create_directory_symlink("src", space.path() / "link");
  const auto before = space.readAll();

  expectOutput(layout, run(space, layout, {"-v"}));
  const auto data = run(space, layout, {"--format=json"});
  EXPECT_EQ(nlohmann::json::parse(data.out).contains("suggestedRoots"),
            layout.end == EndType::stops);
  EXPECT_EQ(space.readAll(), before);

  expectOutput(layout, run(space, layout, {"-q", "--write"}));
  const auto after = space.readAll();
  EXPECT_EQ(after == before, layout.end == EndType::stops || layout.end == EndType::isDone);
  const auto hasMixin = [](const auto& file) {
    return file.second.find("Propagates") != std::string::npos;
  };
  EXPECT_EQ(std::ranges::any_of(after, hasMixin),
            layout.end != EndType::writes && layout.end != EndType::isDone);

  // The suggestion is right.
  if (layout.end != EndType::stops) return;
  const auto words = space.run(
      {"sh", "-c", "cd " + layout.folder + " && " + programPath() + " update " + layout.roots});
  EXPECT_EQ(words.err.find("not found is under"), std::string::npos) << words.err;
}

INSTANTIATE_TEST_SUITE_P(Layouts, RootGuard, ::testing::ValuesIn(layouts()), [](const auto& row) {
  std::string name = row.param.what;
  for (char& c : name) c = c == ' ' || c == '-' ? '_' : c;
  return name;
});

TEST(RootGuard, HoldsForStandardInput) {
  const Workspace space;
  for (const auto& [name, text] : tree("src/")) space.write(name, text);
  const auto update = [&](const std::string& options) {
    return space.run({"sh", "-c",
                      programPath() + " update --stdin-path " + "src/audio/Mixer.vlm " + options +
                          " - < src/audio/Mixer.vlm"});
  };
  const auto text = update("");
  EXPECT_EQ(text.exitCode, 2);
  EXPECT_EQ(text.out, "");
  EXPECT_TRUE(lastLine(text.err).ends_with("; did you mean `-p src`?")) << text.err;
  const auto data = update("--format=json");
  EXPECT_EQ(data.exitCode, 2);
  const auto roots = nlohmann::json::parse(data.out).at("suggestedRoots");
  EXPECT_EQ(roots, nlohmann::json::array({(space.path() / "src").string()}));
  const auto right = update("-p src");
  EXPECT_EQ(right.exitCode, 0);
  EXPECT_NE(right.out.find("classdef Mixer < audio.Base\n"), std::string::npos);
}

// A list with a superclass that is missing would stay anyway: here it is converted.
TEST(RootGuard, StopsTheWritingOfClassesThatCouldBeConverted) {
  const Workspace space;
  space.write("src/audio/Base.vlm", base);
  const std::string text = derived("Mixer", "velum.System");
  space.write("src/audio/Mixer.vlm", text);
  space.write("src/audio/Other.vlm", "classdef Other < audio.Base\nend\n");
  const auto result = space.soca({"update", "--write", "--stats", "src"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(space.read("src/audio/Mixer.vlm"), text);
  EXPECT_NE(result.err.find("1 would change, "), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("; nothing was written\n"), std::string::npos) << result.err;
  EXPECT_EQ(lastLine(result.err),
            "soca: 1 superclass that was not found is under 'src', which is no root; did you mean "
            "`-p src`?");
  const auto log = nlohmann::json::parse(space.soca({"update", "--format=sarif", "src"}).out);
  const auto& call = log.at("runs").at(0).at("invocations").at(0);
  EXPECT_EQ(call.at("exitCode"), 2);
  EXPECT_EQ(call.at("toolExecutionNotifications").back().at("level"), "error");
}

}  // namespace
}  // namespace soca::testing
