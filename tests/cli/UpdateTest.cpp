#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/Places.h"
#include "tests/cli/AppliedEdits.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// Files that differ only in their bytes: each name and the class's source.
std::map<std::string, std::string> encodings() {
  const std::string text = outdatedClass("C");
  const std::string crlf = replaced(text, "\n", "\r\n");
  std::map<std::string, std::string> files;
  files["plain/C.vlm"] = text;
  files["crlf/C.vlm"] = crlf;
  files["crlfNoEnd/C.vlm"] = crlf.substr(0, crlf.size() - 2);
  files["noEnd/C.vlm"] = text.substr(0, text.size() - 1);
  files["blankEnd/C.vlm"] = text + "  ";
  files["mark/C.vlm"] = "\xEF\xBB\xBF" + text;
  files["latin/C.vlm"] = replaced(text, "\u00e9", "\xe9");
  files["loneReturn/C.vlm"] = replaced(text, "it's", "it's\rso");
  files["mixed/C.vlm"] = crlf.substr(0, crlf.size() / 2) + text.substr(text.size() / 2);
  files["\u00e4\u4e2d/\u00dcn\u00ef.vlm"] = text;
  return files;
}

TEST(Update, DiffsAndWritesAreTheSameBytes) {
  const Workspace space;
  const Workspace gitSpace;
  const Workspace patchSpace;
  const std::string odd = "odd name \"\u00e4\"/";
  for (const auto& [name, bytes] : encodings()) {
    for (const Workspace* each : {&space, &gitSpace, &patchSpace}) each->write(odd + name, bytes);
  }
  const auto diff = space.soca({"update", "-p", odd});
  EXPECT_EQ(diff.exitCode, 0) << diff.err;
  const auto data = space.soca({"update", "-p", odd, "--format", "json", "--edits"});
  const auto written = space.soca({"update", "-p", odd, "--write"});
  EXPECT_EQ(written.exitCode, 0) << written.err;
  EXPECT_EQ(written.out, "");
  const auto expected = space.readAll();
  for (const auto& [name, bytes] : encodings()) {
    EXPECT_NE(expected.at(odd + name), bytes) << name;
    EXPECT_EQ(expected.at(odd + name).find("Propagates"), std::string::npos) << name;
  }
  for (const auto& [each, command] :
       {std::pair(&gitSpace, std::vector<std::string>{"git", "apply", "--whitespace=nowarn"}),
        std::pair(&patchSpace, std::vector<std::string>{"patch", "-s", "-p1", "-i"})}) {
    each->write("update.diff", diff.out);
    auto words = command;
    words.emplace_back("update.diff");
    const auto applied = each->run(words);
    EXPECT_EQ(applied.exitCode, 0) << applied.err << applied.out;
    std::filesystem::remove(each->path() / "update.diff");
    EXPECT_EQ(each->readAll(), expected);
  }
  const auto document = nlohmann::json::parse(data.out);
  for (const auto& result : document.at("results")) {
    const std::string name =
        std::filesystem::path(result.at("file")).lexically_relative(space.path());
    EXPECT_EQ(applyEdits(result, encodings().at(name.substr(odd.size()))), expected.at(name));
  }
  // Nothing is left to do.
  EXPECT_EQ(space.soca({"update", "-p", odd, "--check"}).exitCode, 0);
}

TEST(Update, EditsLeaveTheWordsBetweenThem) {
  for (const std::string word : {"Base", "\u00c4"}) {
    const Workspace space;
    space.write(word + ".vlm", "classdef " + word + " < velum.System\nend\n");
    space.write("C.vlm", "classdef C < velum.system.mixin.Propagates & " + word +
                             " & velum.system.mixin.CustomIcon\nend\n");
    const auto result = space.soca({"update", "--format=json", "--edits", "C"});
    EXPECT_EQ(nlohmann::json::parse(result.out).at("results").at(0).at("edits").size(), 2U) << word;
  }
}

TEST(Update, JsonHasItsForm) {
  const Workspace space;
  space.write("p/A.vlm", "classdef A < p.B & far.Gone & velum.system.mixin.Propagates\nend\n");
  space.write("p/B.vlm", "classdef B < velum.System\n  properties (Logical)\n    X\n  end\nend\n");
  space.write("p/N.vlm",
              "classdef N < velum.System\n  properties (PositiveInteger)\n"
              "    X {} = 1;\n  end\nend\n");
  space.write("p/H.vlm", "classdef H < handle\nend\n");
  space.write("p/U.vlm", "classdef U < far.Gone\n  properties (Logical)\n    X\n  end\nend\n");
  const auto result = space.soca({"update", "--format", "json", "--check"});
  EXPECT_EQ(result.exitCode, 2);
  auto document = nlohmann::ordered_json::parse(result.out);
  for (auto& each : document.at("results")) {
    for (auto& conversion : each.at("conversions")) {
      conversion = conversion.at("id").get<std::string>() + ": " +
                   conversion.at("leftOut").at("id").get<std::string>();
    }
  }
  const std::string root = space.path().string();
  const auto expected = nlohmann::ordered_json::parse(R"({"version": 1, "results": [
    {"class": "p.A", "file": "{root}/p/A.vlm", "updated": false,
     "text": "classdef A < p.B & far.Gone & velum.system.mixin.Propagates\nend\n", "messages": [],
     "conversions": ["p.A#mixins: soca:SuperClassUnresolved"], "findings": [],
     "hint": "the superclass 'far.Gone', named by 'p.A', was not found; looked for far/Gone.vlm and far/Gone.p in '{root}'"},
    {"class": "p.B", "file": "{root}/p/B.vlm", "updated": false,
     "text": "classdef B < velum.System\n  properties (Logical)\n    X\n  end\nend\n",
     "messages": ["Property 'X' has no default value, so its properties block is left as it is."],
     "conversions": [],
     "findings": [{"id": "VELUM:system:Analyzer:PropertyHasEmptyDefault", "subject": "X",
       "message": "Property 'X' has no default value, so its properties block is left as it is.",
       "line": 3, "column": 5, "endColumn": 6}]},
    {"class": "p.N", "file": "{root}/p/N.vlm", "updated": false,
     "text": "classdef N < velum.System\n  properties (PositiveInteger)\n    X {} = 1;\n  end\nend\n",
     "messages": [],
     "conversions": ["p.N#attributes/positive-integer:X: soca:ResultHasSyntaxError"],
     "findings": []}],
   "errors": [],
   "undecided": [{"class": "p.U", "id": "VELUM:system:Analyzer:NotASystemObject",
     "message": "It is not known whether 'p.U' is a System object class: the superclass 'far.Gone', named by 'p.U', was not found.",
     "missing": ["far.Gone"],
     "hint": "the superclass 'far.Gone', named by 'p.U', was not found; looked for far/Gone.vlm and far/Gone.p in '{root}'"}],
   "skipped": [{"class": "p.H", "id": "VELUM:system:Analyzer:NotASystemObject",
     "message": "'p.H' is not a System object class, so it cannot be updated.",
     "hint": "none of the classes that it derives from is a System object"}]})");
  EXPECT_EQ(replaced(document.dump(1), root, "{root}"), expected.dump(1));
}

TEST(Update, SuperclassesAreUpdatedOnce) {
  const Workspace space;
  space.write("A.vlm", "classdef A < Base & velum.system.mixin.Propagates\nend\n");
  space.write("B.vlm", "classdef B < Base & velum.system.mixin.Propagates\nend\n");
  space.write("Base.vlm", outdatedClass("Base"));
  EXPECT_EQ(space.soca({"update", "--check", "A", "B"}).out, "A\nB\n");
  const auto all = space.soca({"update", "--check", "-s", "B", "A", "Base"});
  EXPECT_EQ(all.out, "B\nBase\nA\n");
  EXPECT_EQ(all.exitCode, 1);
  EXPECT_NE(all.err.find("looked at 3 classes: 3 would change"), std::string::npos) << all.err;
  EXPECT_EQ(space.soca({"update", "-s", "-r", "mixins", "--write", "A"}).exitCode, 0);
  EXPECT_EQ(space.soca({"update", "--check", "-r", "mixins"}).out, "B\n");
  EXPECT_EQ(space.soca({"update", "--check", "-r", "impl,attributes"}).out, "Base\n");
}

TEST(Update, PrintsWhatIsLeftToAPerson) {
  const Workspace space;
  space.write("Base.vlm", outdatedClass("Base"));
  space.write("Heir.vlm",
              "classdef (StrictDefaults) Heir < Base\n    methods (Access = protected)\n"
              "        function flag = isInputSizeMutableImpl(obj, index)\n"
              "            flag = false;\n        end\n    end\nend\n");
  space.write("Stays.vlm",
              "classdef Stays < velum.System\n    properties (Logical)\n        X\n    end\n"
              "    methods\n        function tf = isOutputSizeLockedImpl(obj, k)\n"
              "            tf = true;\n        end\n    end\nend\n");
  const auto result = space.soca({"update"});
  for (const char* part :
       {"Stays.vlm:3: warning: Property 'X' has no default value, so its properties block is left "
        "as it is. [PropertyHasEmptyDefault]\n",
        "Stays.vlm:6: warning: Method 'isOutputSizeLockedImpl' is not deleted: ",
        "looked at 3 classes: 1 would change, 2 stay as they are; 2 findings"}) {
    EXPECT_NE(result.err.find(part), std::string::npos) << part << "\n" << result.err;
  }
  // A superclass in the run gains the method, so it is no longer redundant.
  EXPECT_EQ(result.err.find("Heir"), std::string::npos) << result.err;
  // A quiet run prints its errors and its last line only.
  const auto quiet = space.soca({"update", "-q"});
  EXPECT_EQ(quiet.out, "");
  EXPECT_EQ(quiet.err,
            "soca: looked at 3 classes: 1 would change, 2 stay as they are; 2 findings\n");
}

TEST(Update, LaysLinesApartUnlessToldOtherwise) {
  const Workspace space;
  space.write("Gate.vlm",
              "classdef Gate < velum.system.mixin.Propagates\r\n"
              "\tproperties (Logical), Muted = false; end\r\nend\r\n");
  const char* const meets =
      "Gate.vlm:2: warning: the attribute Logical of property 'Muted' is not ";
  const struct {
    std::vector<std::string> options;
    std::string expected;
  } rows[] = {
      {{"--no-layout"}, std::string(meets) + "converted: two of its edits meet. Put each "},
      {{"--risk=safe"}, std::string(meets) + "converted: a line would be laid apart. Put each "},
      {{},
       "Gate.vlm:2: note: line 2 laid apart for the attribute Logical of property 'Muted' [soca"},
      {{"--write"}, "Gate.vlm:2: note: line 2 laid apart for "},
      {{"--check"}, "soca: looked at 1 class: 0 would change, 1 stays as it is"},
  };
  for (auto [options, expected] : rows) {
    options.insert(options.begin(), "update");
    const std::string messages = space.soca(options).err;
    EXPECT_NE(messages.find(expected), std::string::npos) << expected << "\n" << messages;
  }
  EXPECT_EQ(space.read("Gate.vlm"),
            "classdef Gate < velum.System\r\n\tproperties \r\n"
            "\t\tMuted (1, 1) logical = false;\r\n\tend\r\nend\r\n");
}

TEST(Update, StatsShowTheTimeOfEachPhase) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  const std::string err = space.soca({"update", "-q", "--stats"}).err;
  for (const char* part : {"  took ", " MiB of memory\n", "\n  walk ", "\n  read ", "\n  analyse ",
                           "\n  rules ", "\n  checks ", "\n  diff "}) {
    EXPECT_NE(err.find(part), std::string::npos) << part << "\n" << err;
  }
  EXPECT_EQ(err.find("\n  write "), std::string::npos) << err;
}

TEST(Update, AnyNumberOfJobsGivesTheSameBytes) {
  const Workspace space;
  std::filesystem::copy(projectPath("examples"), space.path() / "examples",
                        std::filesystem::copy_options::recursive);
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{"-v"}, {"-s", "--format", "json"}, {"--check"}}) {
    std::vector<std::string> arguments = {"update", "-p", "examples", "-j", "1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto alone = space.soca(arguments);
    EXPECT_FALSE(alone.out.empty());
    for (const char* jobs : {"2", "16"}) {
      arguments[4] = jobs;
      const auto parallel = space.soca(arguments);
      EXPECT_EQ(parallel.out, alone.out);
      EXPECT_EQ(parallel.err, alone.err);
      EXPECT_EQ(parallel.exitCode, alone.exitCode);
    }
  }
}

TEST(Update, ColorsAreForTerminalsOrOnRequest) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  space.write("B.vlm", "classdef B < velum.System\n  properties\n    X = (1;\n  end\nend\n");
  struct Case {
    std::vector<std::string> environment;
    std::vector<std::string> options;
    bool hasColor;
  };
  const std::vector<Case> table = {
      {{}, {}, false},
      {{}, {"--color=never", "--color", "always"}, true},
      {{"FORCE_COLOR=1"}, {"--", "--color=never", "A", "B"}, true},
      {{"FORCE_COLOR=1", "TERM=dumb"}, {}, true},
      {{"FORCE_COLOR=1", "NO_COLOR="}, {}, true},
      {{"FORCE_COLOR=1", "NO_COLOR=0"}, {}, false},
      {{"FORCE_COLOR=0"}, {}, false},
      {{"FORCE_COLOR="}, {}, false},
      {{"NO_COLOR=1"}, {"--color=always"}, true},
      {{"FORCE_COLOR=1"}, {"--color=never"}, false},
  };
  for (const auto& [environment, options, hasColor] : table) {
    std::vector<std::string> command = {"env", "-u", "NO_COLOR", "-u", "FORCE_COLOR"};
    command.insert(command.end(), environment.begin(), environment.end());
    command.insert(command.end(), {programPath(), "update"});
    command.insert(command.end(), options.begin(), options.end());
    const auto result = space.run(command);
    EXPECT_EQ(result.out.find("\x1b[31m-classdef") != std::string::npos, hasColor) << command[5];
    EXPECT_EQ(result.err.find("\x1b[1;31msoca:\x1b[m VELUM") != std::string::npos, hasColor);
    EXPECT_EQ(result.err.find("B.vlm:3:11: \x1b[1;31merror:") != std::string::npos, hasColor);
    // The same for a command line that is not valid.
    command.insert(command.end() - static_cast<std::ptrdiff_t>(options.size()), "--frob");
    const bool complainsInColor = space.run(command).err.starts_with("\x1b[1;31msoca:\x1b[m '");
    EXPECT_EQ(complainsInColor, hasColor) << command[5];
  }
}

TEST(Update, ControlCharactersInNamesAreNotPrinted) {
  const auto result = Workspace().soca({"update", "A\x1b[31m\x7f\xc2\x9b!"});
  EXPECT_NE(result.err.find("'A\\u001b[31m\\u007f\\u009b!'"), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace soca::testing
