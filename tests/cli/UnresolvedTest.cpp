// Classes of which a superclass is not found.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* flag = "  properties (Logical)\n    Flag = true;\n  end\nend\n";
constexpr const char* mixin = "velum.system.mixin.Propagates";

// The lists of the document that hold the class, and the exit code.
struct Verdict {
  std::string lists;
  int exitCode = 0;
  nlohmann::json document;
};

Verdict verdictOf(const Workspace& space, const std::string& className,
                  std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"update", "--format=json"});
  const auto result = space.soca(arguments);
  Verdict verdict{"", result.exitCode, nlohmann::json::parse(result.out)};
  for (const char* list : {"results", "errors", "undecided", "skipped"}) {
    if (!verdict.document.contains(list)) continue;
    for (const auto& entry : verdict.document.at(list)) {
      if (entry.at("class") != className) continue;
      verdict.lists += list;
      for (const auto& conversion : entry.value("conversions", nlohmann::json::array())) {
        if (conversion.at("made")) continue;
        verdict.lists += " without " + conversion.at("kinds").at(0).get<std::string>();
        EXPECT_EQ(conversion.at("leftOut").at("id"), "soca:SuperClassUnresolved");
      }
    }
  }
  return verdict;
}

// The superclasses that the rows below name, besides `far.Gone`, which has no file.
void writeSuperClasses(const Workspace& space) {
  space.write("pkg/Heir.vlm", "classdef Heir < far.Gone\nend\n");
  space.write("pkg/Both.vlm", "classdef Both < velum.System & far.Gone\nend\n");
  space.write("pkg/Plain.vlm", "classdef Plain < handle\nend\n");
  space.write("pkg/Sealed.p", "");
  space.write("sealed.json", R"({"classes": {"pkg.Sealed": {"superclasses": []}}})");
  space.write("none.json", R"({"classes": {"far.Gone": {"superclasses": []}}})");
  space.write("base.json", R"({"classes": {"far.Gone": {"superclasses": ["velum.System"]}}})");
}

TEST(Unresolved, ClassesWithOldFormsAreUndecided) {
  struct Row {
    const char* what;
    const char* superClasses;
    std::string body;
    std::vector<std::string> options;
    const char* lists;
  };
  const std::string set =
      "  properties\n    Mode = 'a';\n    ModeSet = velum.system.StringSet({'a'});\n  end\nend\n";
  const std::string method =
      "  methods\n    function isInputSizeLockedImpl(~)\n    end\n  end\nend\n";
  const std::vector<Row> table = {
      {"an old attribute", "far.Gone", flag, {}, "undecided"},
      {"a companion set", "far.Gone", set, {}, "undecided"},
      {"a method with an old name", "far.Gone", method, {}, "undecided"},
      {"an attribute that a finding would be about",
       "far.Gone",
       "  properties (PositiveInteger)\n    N\n  end\nend\n",
       {},
       "undecided"},
      {"one superclass of two", "handle & far.Gone", flag, {}, "undecided"},
      {"the superclass of a superclass", "pkg.Heir", flag, {}, "undecided"},
      {"a superclass with only a p-file", "pkg.Sealed", flag, {}, "undecided"},
      {"nothing old", "far.Gone", "  properties\n    X = 1;\n  end\nend\n", {}, "skipped"},
      {"a block that was always empty", "far.Gone", "  properties\n  end\nend\n", {}, "skipped"},
      {"one with an old attribute",
       "far.Gone",
       "  properties (Logical)\n  end\nend\n",
       {},
       "undecided"},
      {"a form of a rule that is not selected", "far.Gone", flag, {"--rules=impl"}, "skipped"},
      {"syntax errors", "far.Gone", "  properties (Logical)\n", {}, "skipped"},
      {"superclasses that are known", "pkg.Plain", flag, {}, "skipped"},
      {"no superclass", "", flag, {}, "skipped"},
      {"an update of a superclass", "velum.System & pkg.Heir", flag, {"-s"}, "undecided"},
      {"a class table that has it", "far.Gone", flag, {"--class-table=none.json"}, "skipped"},
      {"a class table of a System object",
       "far.Gone",
       flag,
       {"--class-table=base.json"},
       "results"},
      {"a System object all the same", "pkg.Both", flag, {}, "results"},
      {"the answer of the service", "far.Gone", flag, {"--as-service"}, "skipped"},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.what);
    const Workspace space;
    writeSuperClasses(space);
    const std::string head = *row.superClasses == '\0' ? "" : std::string(" < ") + row.superClasses;
    space.write("pkg/X.vlm", "classdef X" + head + "\n" + row.body);
    auto arguments = row.options;
    arguments.emplace_back("pkg");
    const Verdict inFolder = verdictOf(space, "pkg.X", arguments);
    EXPECT_EQ(inFolder.lists, row.lists);
    const bool isUndecided = inFolder.lists == "undecided";
    EXPECT_EQ(inFolder.exitCode == 2, isUndecided);
    arguments.back() = "pkg.X";
    const Verdict named = verdictOf(space, "pkg.X", arguments);
    EXPECT_EQ(named.lists, inFolder.lists == "skipped" ? "errors" : row.lists);
  }
}

TEST(Unresolved, ListsThatRestOnThemAreNotRewritten) {
  struct Row {
    const char* what;
    std::string superClasses;
    std::vector<std::string> options;
    const char* lists;
  };
  const std::string andMixin = std::string(" & ") + mixin;
  const std::vector<std::string> onlyAttributes = {"--rules=attributes"};
  const std::vector<Row> table = {
      {"one that stays", "far.Gone" + andMixin, {}, "results without mixins"},
      {"one that stays beside the base",
       "velum.System & far.Gone" + andMixin,
       {},
       "results without mixins"},
      {"the superclass of one that stays, where the base would be added",
       "pkg.Heir" + andMixin,
       {},
       "results without mixins"},
      {"a p-file, where the base would be added",
       "pkg.Sealed" + andMixin,
       {},
       "results without mixins"},
      {"a p-file that the class table has",
       "pkg.Sealed" + andMixin,
       {"--class-table=sealed.json"},
       "results"},
      {"the superclass of one that is a System object", "pkg.Both" + andMixin, {}, "results"},
      {"a p-file beside the base", "velum.System & pkg.Sealed" + andMixin, {}, "results"},
      {"a list that is not rewritten", "velum.System & far.Gone", {}, "results"},
      {"a rule that is not selected", "far.Gone" + andMixin, onlyAttributes, "results"},
      {"a class table that has it", "far.Gone" + andMixin, {"--class-table=none.json"}, "results"},
      {"nothing that is not found", "pkg.Plain" + andMixin, {}, "results"},
      {"the answer of the service", "far.Gone" + andMixin, {"--as-service"}, "results"},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.what);
    const Workspace space;
    writeSuperClasses(space);
    space.write("pkg/X.vlm", "classdef X < " + row.superClasses + "\n" + flag);
    auto arguments = row.options;
    arguments.emplace_back("pkg.X");
    EXPECT_EQ(verdictOf(space, "pkg.X", arguments).lists, row.lists);
    arguments.emplace_back("--write");
    const Verdict written = verdictOf(space, "pkg.X", arguments);
    EXPECT_EQ(written.exitCode, 0);
    const bool hasMixin = space.read("pkg/X.vlm").find(mixin) != std::string::npos;
    const bool staysAsItIs = std::string(row.lists) != "results" || row.options == onlyAttributes;
    EXPECT_EQ(hasMixin, staysAsItIs);
    EXPECT_EQ(space.read("pkg/X.vlm").find("Logical"), std::string::npos);
  }
}

TEST(Unresolved, IsSaidOfEachClassAndInTheSummary) {
  const Workspace space;
  space.write("p/A.vlm",
              std::string("classdef A < velum.System & far.Gone & ") + mixin + "\nend\n");
  for (const char* name : {"B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M"}) {
    space.write(std::string("p/") + name + ".vlm",
                std::string("% old\nclassdef ") + name + " < handle & far.Gone\n" + flag);
  }
  const auto text = space.soca({"update"});
  EXPECT_EQ(text.exitCode, 2);
  EXPECT_NE(text.err.find("p/M.vlm:2: error: undecided: the superclass 'far.Gone', named by 'p.M', "
                          "was not found [SuperClassUnresolved]\n"),
            std::string::npos)
      << text.err;
  EXPECT_NE(
      text.err.find("soca: looked at 1 class: 0 would change, 1 stays as it is; 12 undecided; "
                    "1 conversion left out\n"),
      std::string::npos)
      << text.err;
  const auto quiet = space.soca({"update", "-q"});
  EXPECT_EQ(quiet.exitCode, 2);
  EXPECT_NE(quiet.err.find("p/K.vlm:2:"), std::string::npos);
  EXPECT_EQ(quiet.err.find("p/L.vlm:2:"), std::string::npos);
  EXPECT_NE(quiet.err.find("  and 2 more classes undecided\n"), std::string::npos) << quiet.err;

  const auto log =
      nlohmann::json::parse(space.soca({"update", "--format=sarif", "p/A.vlm", "p.M"}).out)
          .at("runs")
          .at(0);
  ASSERT_EQ(log.at("results").size(), 2U);
  for (const auto& result : log.at("results")) {
    const auto& rules = log.at("tool").at("driver").at("rules");
    EXPECT_EQ(rules.at(result.at("ruleIndex").get<std::size_t>()).at("id"),
              "soca:SuperClassUnresolved");
    EXPECT_EQ(result.at("ruleId"), "soca:SuperClassUnresolved");
    EXPECT_EQ(result.at("level"), &result == &log.at("results").front() ? "warning" : "error");
    EXPECT_FALSE(result.contains("fixes"));
  }
  const auto regionOf = [&](std::size_t result) {
    return log.at("results").at(result).at("locations").at(0).at("physicalLocation").at("region");
  };
  EXPECT_EQ(regionOf(0).at("startColumn"), 14);
  EXPECT_EQ(regionOf(1).at("startLine"), 2);
  EXPECT_EQ(log.at("invocations").at(0).at("exitCode"), 2);
}

TEST(Unresolved, AreListedAndMakeATableToComplete) {
  const Workspace space;
  writeSuperClasses(space);
  space.write("pkg/X.vlm", std::string("classdef X < pkg.Sealed & ") + mixin + "\n" + flag);
  space.write("pkg/Y.vlm",
              std::string("classdef Y < velum.System & far.Gone & ") + mixin + "\nend\n");
  const std::vector<std::string> options = {"classes", "--unresolved"};
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), options.begin(), options.end());
    return space.soca(more);
  };
  const auto list = with({});
  EXPECT_EQ(list.exitCode, 0);
  EXPECT_EQ(list.out,
            "far.Gone: named by pkg.Both and 2 more\n"
            "pkg.Sealed: only a p-file was found; named by pkg.X\n");
  EXPECT_EQ(
      list.err,
      "soca: 2 superclasses were not found; --format json prints a class table to complete\n");
  EXPECT_EQ(with({"pkg.X"}).out, "pkg.Sealed: only a p-file was found; named by pkg.X\n");
  EXPECT_EQ(with({"pkg/Plain.vlm"}).err, "soca: all superclasses of 1 class were found\n");
  space.write("files/notes.txt", "");
  space.write("files/Script.vlm", "x = 1;\n");
  fs::create_directories(space.path() / "empty");
  fs::create_symlink("Loop.vlm", space.path() / "pkg/Loop.vlm");
  const struct {
    const char* argument;
    int exitCode;
    const char* error;
  } others[] = {
      {"empty", 2, "soca: there is no class file in 'empty'\n"},
      {"files", 2, "soca: no file in 'files' holds a class\n"},
      {"files/notes.txt", 0, "soca: note: 'files/notes.txt' is passed over: its name ends"},
      {"pkg.Plan", 2, "There is no class 'pkg.Plan'.\n"},
      {"pkg.Plan", 2, "hint: did you mean 'pkg.Plain'?\n"},
      {"pkg/Loop.vlm", 2, "Too many levels of symbolic links\n"},
      {"pkg", 2, "2 superclasses were not found"},
  };
  for (const auto& [argument, exitCode, error] : others) {
    const auto result = with({argument});
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    EXPECT_NE(result.err.find(error), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("all superclasses"), std::string::npos) << result.err;
  }
  fs::remove(space.path() / "pkg/Loop.vlm");

  std::string table = with({"--format=json"}).out;
  space.write("table.json", table);
  const auto lists = [&](const char* className) {
    return verdictOf(space, className, {"--class-table=table.json", "pkg"}).lists;
  };
  // Nothing is filled in.
  EXPECT_EQ(with({"--class-table=table.json"}).out, list.out);
  EXPECT_EQ(lists("pkg.X"), "results without mixins");
  EXPECT_EQ(lists("pkg.Y"), "results without mixins");
  for (std::size_t at = table.find("\"?\""); at != std::string::npos; at = table.find("\"?\"")) {
    table.replace(at, 3, "\"velum.System\"");
  }
  space.write("table.json", table);
  EXPECT_EQ(with({"--class-table=table.json"}).out, "");
  EXPECT_EQ(lists("pkg.X"), "results");
  EXPECT_EQ(lists("pkg.Y"), "results");

  const auto wrongRoot = space.run({"env", "-C", "pkg", programPath(), "classes", "--unresolved"});
  EXPECT_EQ(wrongRoot.exitCode, 2);
  EXPECT_NE(wrongRoot.err.find("did you mean `-p ..`?\n"), std::string::npos) << wrongRoot.err;
}

}  // namespace
}  // namespace soca::testing
