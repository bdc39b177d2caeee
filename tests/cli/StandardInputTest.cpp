#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/Places.h"
#include "tests/cli/AppliedEdits.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

// Runs the program in the folder, with the bytes on standard input.
ProgramResult update(const Workspace& space, const std::string& options, std::string_view bytes) {
  const Workspace outside;
  outside.write("in", bytes);
  const std::string input = outside.path() / "in";
  return space.run({"sh", "-c", programPath() + " update " + options + " - < " + input});
}

TEST(StandardInput, PrintsTheBytesThatWriteWouldMake) {
  const std::string text = outdatedClass("C");
  const std::string current = "classdef C < velum.System\r\n%% \xe9\r\nend  ";
  std::string latin = text;
  latin.replace(latin.find("\u00e9"), 2, "\xe9");
  for (const std::string& bytes :
       {text, "\xEF\xBB\xBF" + text.substr(0, text.size() - 1), latin, text + "\r\n  ", current}) {
    const Workspace space;
    space.write("p/C.vlm", bytes);
    EXPECT_EQ(space.soca({"update", "--write", "-q"}).exitCode, 0);
    const auto expected = space.read("p/C.vlm");
    EXPECT_EQ(expected == bytes, bytes == current);
    // Neither the contents of the file nor its existence matter.
    for (const char* disk : {"classdef C < handle\nend\n", "classdef (", ""}) {
      space.write("p/C.vlm", disk);
      if (*disk == '\0') std::filesystem::remove_all(space.path() / "p");
      const auto result = update(space, "--stdin-path p/C.vlm", bytes);
      EXPECT_EQ(result.exitCode, 0) << result.err;
      EXPECT_EQ(result.out, expected);
      EXPECT_EQ(result.err, "");
    }
  }
}

TEST(StandardInput, PrintsOnlyTheTextOnStandardOutput) {
  const Workspace space;
  space.write("Base.vlm", "classdef Base < velum.System\nend\n");
  const std::string finding = "classdef C < Base\n  properties (Logical)\n    X\n  end\nend\n";
  const std::string leftOut =
      "classdef C < Base\n  properties (PositiveInteger)\n    X {} = 1;\n  end\nend\n";
  const std::string changed = "classdef C < Base & velum.system.mixin.Propagates\nend\n";
  struct Row {
    const char* what;
    std::string options, bytes;
    int exitCode;
    std::string out, err;
  };
  const Row rows[] = {
      {"a finding", "", finding, 0, finding, "C.vlm:3: warning: Property 'X' has no default"},
      {"a finding with -q", "-q", finding, 0, finding, ""},
      {"a conversion that is left out", "", leftOut, 0, leftOut, "is not converted: the new line"},
      {"a text that is refused", "--as-service", leftOut, 2, "",
       "is refused: the new text would have"},
      {"a syntax error", "", "classdef C < Base\n", 2, "", "C.vlm:"},
      {"another class", "", "classdef C < handle\nend\n", 2, "", "NotASystemObject"},
      {"nothing", "", "", 2, "", "is empty"},
      {"a check", "--check", changed, 1, "C\n", ""},
      {"a check of a current class", "--check", finding, 0, "", "warning"},
      {"a file on no root", "-p none -p .", changed, 2, "", "none"},
      {"superclasses", "-s", changed, 2, "", "only one text is read"},
      {"writing", "--write", changed, 2, "", "--write"},
      {"several classes", "Base", changed, 2, "", "the only argument"},
  };
  for (const Row& row : rows) {
    const auto result = update(space, "--stdin-path C.vlm " + row.options, row.bytes);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.what << result.err;
    EXPECT_EQ(result.out, row.out) << row.what;
    EXPECT_NE(result.err.find(row.err), std::string::npos) << row.what << result.err;
  }
  EXPECT_EQ(update(space, "", changed).exitCode, 2);
  EXPECT_EQ(update(space, "--stdin-path C.p", changed).exitCode, 2);
  for (const char* path : {"/C.vlm", "../src/C.vlm", "'C C.vlm'", "my-src/C.vlm"}) {
    const auto result = update(space, std::string("--stdin-path ") + path, changed);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("has no class name on any root"), std::string::npos) << result.err;
  }
}

TEST(StandardInput, CanBePrintedAsData) {
  const Workspace space;
  const std::string bytes = outdatedClass("C");
  const auto text = update(space, "--stdin-path C.vlm", bytes);
  const auto data = update(space, "--stdin-path C.vlm --format json --edits --check", bytes);
  EXPECT_EQ(data.exitCode, 1);
  const auto document = nlohmann::json::parse(data.out);
  const auto& result = document.at("results").at(0);
  EXPECT_EQ(result.at("text"), text.out);
  EXPECT_EQ(applyEdits(result, bytes), text.out);
  const auto log = update(space, "--stdin-path C.vlm --format sarif", "classdef (");
  EXPECT_EQ(log.exitCode, 2);
  const auto run = nlohmann::json::parse(log.out).at("runs").at(0);
  EXPECT_EQ(run.at("invocations").at(0).at("exitCode"), 2);
}

}  // namespace
}  // namespace soca::testing
