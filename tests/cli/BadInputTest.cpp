#include <gtest/gtest.h>

#include <algorithm>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/failure/Terminate.h"
#include "reports/outcomes/InternalErrors.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

struct WrongCommandLine {
  std::vector<std::string> arguments;
  // A part of standard error.
  const char* error;
};

TEST(BadInput, WrongCommandLineDoesNothing) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  space.write("notes.txt", "");
  space.write("my-folder/B.vlm", outdatedClass("B"));
  space.write("my-folder/D.text", "");
  space.write("t1.json", R"({"classes": {"A": {"supers": []}}})");
  space.write("t2.json", "{");
  const std::vector<WrongCommandLine> table = {
      {{}, "a command is missing"},
      {{"frobnicate"}, "unknown command 'frobnicate'; known are: update"},
      {{"udpate"}, "; did you mean 'update'?"},
      {{"help"}, "; did you mean '--help'?"},
      {{"--verison"}, "; did you mean '--version'?"},
      {{"-p", "."}, "the command comes first"},
      {{"update", "--frob"}, "'update' has no option '--frob'"},
      {{"update", "--ruels=impl"}, "no option '--ruels'; did you mean '--rules'?"},
      {{"update", "--super"}, "; did you mean '--superclasses'?"},
      {{"update", "--write=no"}, "--write takes no value"},
      {{"check", "--write", "A.vlm"}, "'check' has no option '--write'; it is one of 'update'"},
      {{"update", "-p"}, "--path needs a value"},
      {{"update", "--write", "-p", "missing", "A"}, "the root 'missing' can't be used"},
      {{"update", "-p", "my_folder"}, "No such file or directory; did you mean 'my-folder'?"},
      {{"update", "--write", "-p", "A.vlm"}, "the root 'A.vlm' is no folder"},
      {{"update", "--write", "-r", "impl,others"}, "unknown rule 'others'"},
      {{"update", "--write", "-r", "impl,Mixin"}, "; did you mean 'mixins'?"},
      {{"update", "--write", "-r", ""}, "unknown rule ''"},
      {{"update", "-r", "impl/renam"}, "; did you mean 'impl/rename'?"},
      {{"update", "--risk", "save"}, "unknown risk 'save'; known are: safe, review, unsafe; did"},
      {{"update", "--group-by", "kinds"}, "'kinds'; known are: kind, reason, package; did you"},
      {{"update", "--as-service", "--risk=review"}, "--risk and --as-service cannot be combined"},
      {{"update", "--as-service", "-r", "mixins,impl/rename"}, "--rules with a kind and --as-serv"},
      {{"update", "--as-service", "--no-layout"},
       "--no-layout and --as-service cannot be combined"},
      {{"update", "--as-service", "--tidy"}, "--tidy and --as-service cannot be combined"},
      {{"update", "--as-service", "--tidy"}, "--tidy and --as-service cannot be combined"},
      {{"update", "--as-service", "--summary"}, "--summary and --as-service cannot be combined"},
      {{"update", "--as-service", "--group-by=kind"}, "--group-by and --as-service cannot be com"},
      {{"update", "--as-service", "--only=*"}, "--only and --as-service cannot be combined"},
      {{"update", "--as-service", "--selection=s"}, "--selection and --as-service cannot be comb"},
      {{"update", "--as-service", "--list"}, "--list and --as-service cannot be combined"},
      {{"update", "--selection=s", "-r", "impl"}, "--selection and --rules cannot be combined"},
      {{"update", "--write", "--selection", "t3.json"}, "the selection can't be read: t3.json: th"},
      {{"update", "--selection", ""}, "--selection takes the name of a file"},
      {{"update", "--list", "--write"}, "--write and --list cannot be combined"},
      {{"update", "--list", "--check"}, "--check and --list cannot be combined"},
      {{"update", "--list", "--summary"}, "--summary and --list cannot be combined"},
      {{"update", "--list", "--edits", "--format=json"}, "--edits and --list cannot be combined"},
      {{"update", "--list", "--format=sarif"}, "--format sarif and --list cannot be combined"},
      {{"update", "--summary", "--format=json"}, "--summary and --format json cannot be combined"},
      {{"update", "--summary", "-v"}, "--summary and --verbose cannot be combined"},
      {{"update", "--group-by=kind", "-q"}, "--quiet prints no numbers to group: add --summary"},
      {{"update", "--summary", "--stdin-path=A.vlm", "-"}, "--summary and --stdin-path cannot"},
      {{"update", "-j", "0"}, "--jobs takes a number"},
      {{"update", "-j", "2x"}, "--jobs takes a number"},
      {{"update", "--format", "yaml"}, "unknown format 'yaml'"},
      {{"update", "--color", "red"}, "unknown value of --color 'red'"},
      {{"update", "--write", "--check"}, "--write and --check cannot be combined"},
      {{"update", "--write", "--verify", ""}, "--verify takes a command for the shell"},
      {{"update", "--verify", "true"}, "--verify needs --write"},
      {{"update", "--skip", ""}, "--only and --skip take patterns, and not an empty text"},
      {{"update", "--check", "--verify", "true"}, "--verify needs --write"},
      {{"update", "--stdin-path=A.vlm", "--verify=true", "-"}, "--verify needs --write"},
      {{"update", "--format=json", "--edits", "--write"}, "--edits and --write cannot be combined"},
      {{"update", "--format", "sarif", "--write"}, "--format sarif and --write cannot be combined"},
      {{"update", "--edits"}, "--edits needs a format for programs"},
      {{"update", "-"}, "'-' is standard input: add --stdin-path"},
      {{"update", "--stdin-path=A.vlm", "A"}, "--stdin-path needs '-' as the only argument"},
      {{"update", "-q", "-v"}, "--quiet and --verbose cannot be combined"},
      {{"update", ""}, "an argument is empty"},
      {{"update", "--write", "A", "/etc"}, "the folder '/etc' is on no root"},
      {{"update", "--write", "A", "missing/"}, "there is no file or folder 'missing/'"},
      {{"update", "my-floder/D.txt", "A"}, "; did you mean 'my-folder/D.text'?"},
      {{"update", "--as-service", "A", "notes.txt"}, "'notes.txt' is no class file"},
      {{"actions", "A", "notes.txt"}, "'notes.txt' is no class file"},
      {{"actions", "my-folder/B.vlm"}, "has no class name on any root"},
      {{"update", "my-folder/C.vlm"}, "no file or folder 'my-folder/C.vlm'; did you mean 'my-fol"},
      {{"update", "--write", "my-folder"}, "is on no root"},
      {{"update", "--write", "./my-folder/x"}, "there is no file or folder"},
      {{"update", "--write", "A\xff"}, "is not UTF-8"},
      {{"update", "--write", "--class-table", "t1.json"}, "unknown key \"supers\""},
      {{"update", "--write", "--class-table", "t2.json"}, "class table 't2.json' is wrong"},
      {{"update", "--write", "--class-table", "t3.json"},
       "the class table can't be read: t3.json: there is no such file"},
      {{"actions"}, "'CLASS' is missing"},
      {{"classes", "--format=json", "A"}, "--format needs --unresolved"},
      {{"classes", "--format=sarif", "--unresolved"}, "sarif and --unresolved cannot be combined"},
      {{"actions", "."}, "'.' is a folder"},
      {{"check"}, "'FILE' is missing"},
      {{"explain", "a", "b"}, "one id at a time"},
      {{"explain", "Nothing"}, "no rule or message 'Nothing'"},
      {{"explain", "syntaxeror"}, "; did you mean 'SyntaxError'?"},
  };
  const auto before = space.readAll();
  for (const auto& [arguments, error] : table) {
    const ProgramResult result = space.soca(arguments);
    EXPECT_EQ(result.exitCode, 2) << error;
    EXPECT_EQ(result.out, "") << error;
    EXPECT_NE(result.err.find(error), std::string::npos) << error << "\n" << result.err;
  }
  EXPECT_EQ(space.readAll(), before);
}

struct BadClass {
  const char* name;
  const char* source;
  // The short id, and a part of the hint or of the first diagnostic.
  const char* id;
  const char* detail;
  // Whether a walk over the folder counts it, reports it as skipped, or fails.
  enum { counted, skipped, failed } inFolder;
};

const std::vector<BadClass>& badClasses() {
  static const std::vector<BadClass> classes = {
      {"pkg.Empty", "", "NotASystemObject", "Empty.vlm' is empty", BadClass::counted},
      {"pkg.Script", "x = 1;\n", "NotASystemObject", "holds no class", BadClass::counted},
      {"pkg.Commented", "% no classdef\nf(1)\n", "NotASystemObject", "holds no class",
       BadClass::counted},
      {"pkg.Handle", "classdef Handle < handle\nend\n", "NotASystemObject",
       "none of the classes that it derives from", BadClass::skipped},
      {"pkg.Torn", "classdef Torn < handle\n  properties\n    X = (1;\n  end\nend\n",
       "NotASystemObject", "none of the classes that it derives from", BadClass::skipped},
      {"pkg.Alone", "classdef Alone\nend\n", "NotASystemObject", "names no superclass",
       BadClass::skipped},
      {"pkg.Orphan", "classdef Orphan < far.Gone & handle\nend\n", "NotASystemObject",
       "superclass 'far.Gone', named by 'pkg.Orphan', was not found; looked for far/Gone.vlm",
       BadClass::skipped},
      {"pkg.GrandOrphan", "classdef GrandOrphan < pkg.Orphan\nend\n", "NotASystemObject",
       "superclass 'far.Gone', named by 'pkg.Orphan'", BadClass::skipped},
      {"pkg.Circle", "classdef Circle < pkg.Ring\nend\n", "NotASystemObject",
       "among its own superclasses", BadClass::skipped},
      {"pkg.Ring", "classdef Ring < pkg.Circle\nend\n", "NotASystemObject",
       "among its own superclasses", BadClass::skipped},
      {"pkg.Broken", "classdef Broken < velum.System\n  properties\n    X = (1;\n  end\nend\n",
       "SyntaxError", "expected `)` to close `(`", BadClass::failed},
      {"pkg.Nul", nullptr, "SyntaxError", "U+0000", BadClass::failed},
      {"pkg.Deep", nullptr, "CodeAnalyzerError", "nested more than 1000 levels deep",
       BadClass::failed},
      {"pkg.Compiled", "classdef Compiled < velum.System\nend\n", "PFileExists",
       "stands in front of its source", BadClass::skipped},
      {"pkg.Sealed", nullptr, "NotASystemObject", "only a p-file was found", BadClass::skipped},
      {"pkg.Heir", "classdef Heir < pkg.Sealed\nend\n", "NotASystemObject",
       "of the superclass 'pkg.Sealed', named by 'pkg.Heir', only a p-file", BadClass::skipped},
      {"pkg.Place", nullptr, "CodeAnalyzerError", "Place.vlm: it is a folder", BadClass::counted},
      {"pkg.OfPlace", "classdef OfPlace < velum.system.mixin.Propagates & pkg.Place\nend\n",
       "CodeAnalyzerError", "Place.vlm: it is a folder", BadClass::failed},
      {"pkg.Helper", "classdef Helper < pkg.Place\nend\n", "CodeAnalyzerError",
       "Place.vlm: it is a folder", BadClass::failed},
      {"pkg.Nowhere", nullptr, "NotASystemObject", "looked for pkg/Nowhere.vlm", BadClass::counted},
      {"not a name", nullptr, "NotASystemObject", "is no class name", BadClass::counted},
      {"velum.System", nullptr, "NoFileForClass", "have no files", BadClass::counted},
  };
  return classes;
}

// All of the above classes as files.
class BadClasses : public ::testing::Test {
 protected:
  BadClasses() {
    using namespace std::string_literals;
    for (const BadClass& bad : badClasses()) {
      if (bad.source != nullptr) space_.write(fileOf(bad), bad.source);
    }
    space_.write("pkg/Nul.vlm", "classdef Nul < velum.System\n% a\0b\nend\n"s);
    space_.write("pkg/Deep.vlm",
                 "classdef Deep < velum.System\n properties\n X = " + std::string(1100, '(') + '1' +
                     std::string(1100, ')') + ";\n end\nend\n");
    space_.write("pkg/Compiled.p", "");
    space_.write("pkg/Sealed.p", "");
    std::filesystem::create_directories(space_.path() / "pkg/Place.vlm");
    space_.write("pkg/Good.vlm", outdatedClass("Good"));
  }

  static std::string fileOf(const BadClass& bad) {
    std::string file = bad.name;
    std::ranges::replace(file, '.', '/');
    return file + ".vlm";
  }

  static std::string fullId(const BadClass& bad) {
    return std::string("VELUM:system:Analyzer:") + bad.id;
  }

  static nlohmann::json parse(const ProgramResult& result) {
    return nlohmann::json::parse(result.out);
  }

  Workspace space_;
};

TEST_F(BadClasses, NamedOnesFailAndTheOthersAreUpdated) {
  const auto before = space_.readAll();
  for (const BadClass& bad : badClasses()) {
    const auto text = space_.soca({"update", bad.name, "pkg.Good"});
    EXPECT_EQ(text.exitCode, 2) << bad.name;
    EXPECT_NE(text.out.find("+++ b/pkg/Good.vlm"), std::string::npos) << bad.name;
    EXPECT_NE(text.err.find("soca: " + fullId(bad) + ": "), std::string::npos) << text.err;
    EXPECT_NE(text.err.find(bad.detail), std::string::npos) << bad.detail << "\n" << text.err;

    const auto document = parse(space_.soca({"update", "--format", "json", bad.name, "pkg.Good"}));
    ASSERT_EQ(document["errors"].size(), 1) << bad.name;
    const auto& error = document["errors"][0];
    EXPECT_EQ(error["class"], bad.name);
    EXPECT_EQ(error["id"], fullId(bad));
    EXPECT_EQ(error["diagnostics"].empty(), std::string(bad.id) != "SyntaxError") << error;
    const auto& diagnostics = error["diagnostics"];
    const std::string reported =
        error.value("hint", "") + (diagnostics.empty() ? "" : diagnostics[0].value("message", ""));
    EXPECT_NE(reported.find(bad.detail), std::string::npos) << error;
    EXPECT_EQ(document["results"][0]["class"], "pkg.Good");
  }
  EXPECT_EQ(space_.readAll(), before);
}

TEST_F(BadClasses, FoldersSkipOtherClasses) {
  const auto result = space_.soca({"update", "--format", "json", "pkg"});
  EXPECT_EQ(result.exitCode, 2);
  const auto document = parse(result);
  const auto idOf = [&](const char* list, const std::string& name) -> std::string {
    for (const auto& entry : document[list]) {
      if (entry["class"] == name) return entry["id"];
    }
    return "";
  };
  for (const BadClass& bad : badClasses()) {
    EXPECT_EQ(idOf("errors", bad.name), bad.inFolder == BadClass::failed ? fullId(bad) : "");
    EXPECT_EQ(idOf("skipped", bad.name), bad.inFolder == BadClass::skipped ? fullId(bad) : "");
  }
  EXPECT_NE(result.err.find("10 other classes skipped; 3 files without a class"), std::string::npos)
      << result.err;
}

TEST_F(BadClasses, ReportsFailInTheSameWay) {
  EXPECT_EQ(space_.soca({"actions", "pkg.Broken"}).exitCode, 2);
  const auto known = space_.soca({"classes", "pkg.Handle", "pkg.Broken", "pkg.Nowhere"});
  EXPECT_EQ(known.exitCode, 2);
  EXPECT_EQ(known.out,
            "CLASS: pkg.Handle\nNOT a System object\nSuperclasses: None\n\n"
            "CLASS: pkg.Nowhere\nNOT a System object\nSuperclasses: None\n\n");
  EXPECT_NE(known.err.find("pkg/Broken.vlm:3:11: error: "), std::string::npos) << known.err;
  EXPECT_EQ(space_.soca({"classes", "pkg.Hanlde"}).err,
            "soca: there is no class 'pkg.Hanlde'; did you mean 'pkg.Handle'?\n");
}

TEST(BadInputDeathTest, AnInternalErrorNamesTheClass) {
  const auto breakIt = [] {
    installInternalErrorHandler();
    const CurrentClass outer("pkg.Other");
    const CurrentClass current("pkg.Broken");
    foundation::core::diag::terminate("Could not find it", "File", 1, "f");
  };
  EXPECT_DEATH(breakIt(), "class 'pkg.Broken' in .*: Could not find it");
}

TEST(BadInput, AMissingClassSuggestsTheNearestOne) {
  const Workspace space;
  space.write("one/shop/Mixer.vlm", outdatedClass("Mixer"));
  space.write("two/shop/stock/\u00c4rmel.vlm", outdatedClass("\u00c4rmel"));
  space.write("two/shop/Mixes.vlm", outdatedClass("Mixes"));
  const std::vector<std::pair<std::string, std::string>> table = {
      {"shop.Mixre", "shop.Mixer"}, {"Shop.mixer", "shop.Mixer"},
      {"Mixer", "shop.Mixer"},      {"shopp.stock.\u00c4rmle", "shop.stock.\u00c4rmel"},
      {"shop.stock.Mixre", ""},     {"oen", "one"},
      {"shop.Mixeq", "shop.Mixer"}, {"shop.M", ""},
  };
  for (const auto& [name, meant] : table) {
    const auto result = space.soca({"update", "-p", "one", "-p", "two", name});
    EXPECT_NE(result.err.find("There is no class '" + name + "'."), std::string::npos);
    const std::string hint = meant.empty() ? "did you mean" : "did you mean '" + meant + "'?";
    const bool hasHint = result.err.find(hint) != std::string::npos;
    EXPECT_EQ(hasHint, !meant.empty()) << name << "\n" << result.err;
  }
}

// The bytes of ASCII text in UTF-16, little end first, without a byte order mark.
std::string inUtf16(std::string_view text) {
  std::string bytes;
  for (const char c : text) bytes.append({c, '\0'});
  return bytes;
}

TEST(BadInput, WhatIsNoClassIsPassedOverOrNamed) {
  const Workspace space;
  space.write("a/A.vlm", outdatedClass("A"));
  space.write("a/H H.vlm", outdatedClass("H"));
  space.write("a/K.VLM", outdatedClass("K"));
  space.write("a/U.vlm", inUtf16(outdatedClass("U")));
  space.write("b/B.vlm", "\xff\xfe" + inUtf16(outdatedClass("B")));
  space.write("b/Empty.vlm", "");
  space.write("plain/P.vlm", "classdef P < handle\nend\n");
  space.write("files/script.vlm", "x = 1;\n");
  space.write("my-src/lib/M.vlm", outdatedClass("M"));
  space.write("outer/my-src/lib/M.vlm", outdatedClass("M"));
  space.write("my src/lib/M.vlm", outdatedClass("M"));
  space.write("src/dsp/Fir.vlm", outdatedClass("Fir"));
  space.write("notes.md", "");
  std::filesystem::create_directories(space.path() / "empty");
  struct Row {
    const char* what;
    std::vector<std::string> arguments;
    int exitCode;
    // A part of standard error; nothing of the kind if it begins with `!`.
    const char* error;
  };
  std::vector<std::string> many = {"-q"};
  for (char name = 'a'; name < 'm'; ++name) {
    many.push_back(std::string("notes/") + name);
    space.write(many.back(), "");
  }
  const std::vector<Row> table = {
      {"an empty folder", {"--check", "empty"}, 2, "there is no class file in 'empty'; without"},
      {"all of it", {"--check", "--no-ignore", "empty"}, 2, "no class file in 'empty'\n"},
      {"only other classes", {"plain"}, 2, "no class in 'plain' is a System object\n"},
      {"only other files", {"files"}, 2, "no file in 'files' holds a class\n"},
      {"two folders", {"files", "plain"}, 2, "no class in 'files', 'plain' is"},
      {"one folder of two", {"plain", "a"}, 0, "!is a System object"},
      {"the service knows of no such thing", {"--as-service", "empty"}, 0, "!there is no"},
      {"a folder whose name is no identifier", {"my-src"}, 2, "did you mean `-p my-src`?\n"},
      {"one with a blank", {"my src"}, 2, "did you mean `-p 'my src'`?\n"},
      {"one in a folder",
       {"-p", "outer", "outer"},
       2,
       "root of the class path; did you mean `-p outer/my-src`?\n"},
      {"text", {"a/A.vlm", "notes.md"}, 0, "note: 'notes.md' is passed over: its name ends in"},
      {"a script", {"files/script.vlm"}, 0, "script.vlm' is passed over: it holds no class\n"},
      {"an empty file", {"b/Empty.vlm"}, 0, "Empty.vlm' is passed over: it is empty\n"},
      {"a name", {"a/H H.vlm", "a/K.VLM"}, 0, "H.vlm' is passed over: its name is no class name"},
      {"a file on no root",
       {"./my-src/lib/M.vlm"},
       0,
       "lib/M.vlm' is passed over: it is on no root of the class path: "},
      {"and the root", {"my-src/lib/M.vlm"}, 0, "; did you mean `-p my-src`?\n"},
      {"how many", {"b/Empty.vlm", "notes.md"}, 0, "0 stay as they are; 2 passed over\n"},
      {"quietly", {"-q", "b/Empty.vlm", "notes.md"}, 0, "note: 'notes.md' is passed over: its na"},
      {"many, quietly", many, 0, "\n  and 2 more passed over\nsoca: looked at 0"},
      {"a script by its class", {"files.script"}, 2, "NotASystemObject"},
      {"an old encoding", {"b/B.vlm"}, 2, "The file of 'b.B' is in UTF-16, which is not supported"},
      {"in a folder", {"a"}, 0, "; 2 files without a class name; 1 file in UTF-16\n"},
      {"named", {"-v", "a"}, 0, "note: 'a/U.vlm' is passed over: it is in UTF-16\n"},
      {"the others too", {"-v", "a"}, 0, "note: 'a/K.VLM' is passed over: its name is no class"},
      {"only with -v", {"a"}, 0, "!is passed over"},
      {"a class of another root", {"dsp.Fir"}, 2, "in the folder 'src'; did you mean `-p src`?\n"},
      {"a missing file", {"a/AX.vlm"}, 2, "There is no class 'a.AX'."},
      {"no class name", {"a b"}, 2, "'a b' is no class name."},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.what);
    auto arguments = row.arguments;
    arguments.insert(arguments.begin(), "update");
    const auto result = space.soca(arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << result.err;
    const std::string_view error = row.error;
    const bool isAbsent = error.starts_with('!');
    const bool isThere = result.err.find(error.substr(isAbsent ? 1 : 0)) != std::string::npos;
    EXPECT_NE(isThere, isAbsent) << result.err;
  }
}

TEST(BadInput, SyntaxErrorsOfASuperclassAreOfTheNamedClass) {
  const Workspace space;
  space.write("A.vlm", "classdef A < B\nend\n");
  space.write("B.vlm", "classdef B < velum.System\n  properties\n\n  X = ;\n  end\nend\n");
  EXPECT_EQ(space.soca({"update", "A"}).exitCode, 0);
  const auto document =
      nlohmann::json::parse(space.soca({"update", "-s", "--format", "json", "A"}).out);
  const auto& error = document["errors"].at(0);
  EXPECT_EQ(error["class"], "A");
  EXPECT_EQ(error["diagnostics"][0]["line"], 4);
  EXPECT_EQ(error["diagnostics"][0]["column"], 7);
}

TEST(BadInput, WhatRestsOnAPartlyReadClassIsLeftOutWithANote) {
  const Workspace space;
  const auto write = [&](const std::string& name, const std::string& super,
                         const std::string& value) {
    space.write(name + ".vlm", "classdef " + name + " < " + super +
                                   "\nproperties (Logical)\nP = " + value + ";\nend\nend\n");
  };
  write("Broken", "velum.System", "(1");
  write("Deep", "velum.System", std::string(1100, '(') + '1' + std::string(1100, ')'));
  write("C0", "Broken & Deep", "true");
  for (int i = 1; i < 50; ++i) {
    write("C" + std::to_string(i), "C" + std::to_string(i - 1), "true");
  }
  // With a short ancestry and with a long one.
  for (const char* name : {"C2", "C49"}) {
    const auto result = space.soca({"update", "--check", name});
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("[soca:SuperClassUnresolved]"), std::string::npos) << result.err;
    for (const char* note : {"note: the superclass 'Broken', named by 'C0', could be read only in "
                             "part: it has syntax errors\n",
                             "note: the superclass 'Deep', named by 'C0', could be read only in "
                             "part: it is nested too deep\n"}) {
      EXPECT_NE(result.err.find(note), std::string::npos) << name << '\n' << result.err;
    }
  }
}

TEST(BadInput, FoldersThatCannotBeReadAreFailures) {
  const Workspace space;
  const auto link = [&](const char* to, const char* name) {
    std::filesystem::create_directories((space.path() / name).parent_path());
    std::filesystem::create_symlink(to, space.path() / name);
  };
  space.write("one/A.vlm", outdatedClass("A"));
  space.write("two/pkg/C.vlm", outdatedClass("C"));
  link("sub", "one/sub");
  link("pkg", "three/pkg");
  const auto expectFailure = [&](const std::vector<std::string>& arguments, const char* text) {
    auto command = arguments;
    command.insert(command.begin(), {"update", "--write"});
    const auto result = space.soca(command);
    EXPECT_EQ(result.exitCode, 2) << text;
    EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
  };
  // The walk cannot tell what the link is, and then whether a root before hides the class.
  expectFailure({"--no-ignore", "-p", "one"}, "one/sub");
  expectFailure({"-p", "three", "-p", "two", "two"}, "three/pkg/C.p: Too many levels");
  EXPECT_EQ(space.read("two/pkg/C.vlm"), outdatedClass("C"));
}

}  // namespace
}  // namespace soca::testing
