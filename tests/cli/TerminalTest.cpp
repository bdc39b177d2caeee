// What files and names can do to a terminal: nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "reports/text/Escapes.h"
#include "tests/Places.h"
#include "tests/cli/TerminalRun.h"

namespace soca::testing {
namespace {

const std::string title = "\x1b]0;owned\x07";
const std::string shownTitle = "\\u001b]0;owned\\u0007";

struct Case {
  const char* what;
  std::string text;
  std::string inText;
  std::string inLine;
};

TEST(Escapes, OfWhatATerminalObeys) {
  const Case cases[] = {
      {"letters of any script", "a\u00e4\u4e2d\U0001F600\\", "a\u00e4\u4e2d\U0001F600\\",
       "a\u00e4\u4e2d\U0001F600\\"},
      {"the title", title, shownTitle, shownTitle},
      {"a backspace", "a\bb", "a\\u0008b", "a\\u0008b"},
      {"DEL", "\x7f", "\\u007f", "\\u007f"},
      {"the first and last C1 controls, and the next", "\u0080\u009b\u009f\u00a0",
       "\\u0080\\u009b\\u009f\u00a0", "\\u0080\\u009b\\u009f\u00a0"},
      {"bytes that are no UTF-8",
       "\x9b\xe9"
       "1\xc2",
       "\\x9b\\xe91\\xc2", "\\x9b\\xe91\\xc2"},
      {"a prefix of a character before a control", "\xe2\x80\x9b\xe2\x80\x1b",
       "\xe2\x80\x9b\\xe2\\x80\\u001b", "\xe2\x80\x9b\\xe2\\x80\\u001b"},
      {"ends of lines", "a\nb\r\nc\td", "a\nb\r\nc\td", "a\\u000ab\\u000d\\u000ac\\u0009d"},
      {"a return within a line", "a\rb\r", "a\\u000db\\u000d", "a\\u000db\\u000d"},
      {"separators of lines", "\u2027\u2028\u2029", "\u2027\\u2028\\u2029", "\u2027\\u2028\\u2029"},
      {"overrides of the direction", "\u202a\u202e\u202f", "\\u202a\\u202e\u202f",
       "\\u202a\\u202e\u202f"},
      {"isolates", "\u2065\u2066\u2069\u206a", "\u2065\\u2066\\u2069\u206a",
       "\u2065\\u2066\\u2069\u206a"},
      {"NUL", std::string(1, '\0'), "\\u0000", "\\u0000"},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(withEscapes(row.text), row.inText) << row.what;
    EXPECT_EQ(withEscapesInLine(row.text), row.inLine) << row.what;
  }
}

// A class with `text` in the comment of a line that is part of the diff.
std::string classWithComment(const std::string& text) {
  std::string source = outdatedClass("A");
  const std::string_view comment = "it's caf\u00e9";
  return source.replace(source.find(comment), comment.size(), text);
}

// For output without colours.
void expectNoControls(const std::string& output, const std::string& what) {
  EXPECT_EQ(withEscapes(output), output) << what;
}

TEST(Terminal, SourceDoesNotReachIt) {
  const Workspace space;
  const std::string comment = title + "\u009b31m\u202e\rb";
  space.write("A.vlm", classWithComment(comment));
  space.write("B.vlm", "classdef B < velum.System\n % " + comment + " (\n x = (; % " + comment);
  space.write("latin/L.vlm", classWithComment("\x9b"
                                              "31m\xe9"));
  const std::string shown = shownTitle + "\\u009b31m\\u202e\\u000db";
  const auto on = [&](std::vector<std::string> arguments) {
    return outputOnTerminal(space, std::move(arguments));
  };
  const std::string plain = on({"update", "--color=never", "A"});
  EXPECT_NE(plain.find("Flag = true; % " + shown + "\n"), std::string::npos) << plain;
  expectNoControls(plain, "the diff");
  const std::string colored = on({"update", "A"});
  EXPECT_NE(colored.find(shown), std::string::npos) << colored;
  EXPECT_EQ(colored.find(title), std::string::npos);
  EXPECT_NE(colored.find("\x1b[32m+"), std::string::npos) << colored;
  EXPECT_NE(on({"update", "--color=never", "-p", "latin"}).find("% \\x9b31m\\xe9\n"),
            std::string::npos);
  expectNoControls(on({"check", "--color=never", "B.vlm"}), "check");
  EXPECT_EQ(on({"check", "B.vlm"}).find(title), std::string::npos);
  expectNoControls(on({"actions", "A"}), "actions");
  const std::string json = on({"update", "--color=never", "--format", "json", "A"});
  expectNoControls(json, "JSON");
  const auto text =
      nlohmann::json::parse(json.substr(0, json.rfind("soca:")))["results"][0]["text"];
  EXPECT_NE(text.get<std::string>().find(comment), std::string::npos) << "it is the same value";
}

TEST(Terminal, NamesDoNotReachIt) {
  const Workspace space;
  const std::string folder = "f" + title + "\nsoca: forged";
  const std::string shownFolder = "f" + shownTitle + "\\u000asoca: forged";
  space.write(folder + "/A.vlm", outdatedClass("A"));
  space.write(folder + "/B.vlm", "classdef B < velum.System\n x = (;\n");
  space.write("table.json", R"({"classes": {"T": {"superclasses": ["velum.System"],
      "properties": {"P\u001b]0;owned\u0007": {}}}}})");
  const auto expectShown = [&](const std::string& output, const std::string& what) {
    expectNoControls(output, what);
    EXPECT_NE(output.find(shownFolder), std::string::npos) << what << "\n" << output;
    EXPECT_EQ(output.find("\nsoca: forged"), std::string::npos) << what;
  };
  const std::vector<std::vector<std::string>> commands = {
      {"check", "--color=never", folder + "/B.vlm"},
      {"check", "--color=never", folder + "/C.vlm"},
      {"update", "--color=never", "-v", "-p", folder, "A"},
      {"update", "--color=never", "-p", folder, "B"},
      {"update", "--color=never", "-p", folder, "--write", "A"},
      {"undo", "--color=never", "--list"},
  };
  for (const auto& command : commands) {
    if (command.back() != "A") expectShown(outputOnTerminal(space, command), command.front());
    const auto piped = space.soca(command);
    if (command.back() != "A") expectShown(piped.out + piped.err, "not on a terminal");
  }
  space.write(folder + "/A.vlm", "changed");
  expectShown(outputOnTerminal(space, {"undo", "--color=never"}), "undo");
}

TEST(Terminal, ClassTablesDoNotReachIt) {
  const Workspace space;
  for (const char* name : {"A", "B"}) space.write(name + std::string(".vlm"), outdatedClass(name));
  space.write("table.json", R"({"classes": {
      "A": {"properties": {"Mode": {"constrainedSet":
          {"setProperty": "ModeSet", "values": ["auto", "\u001b]0;owned\u0007"]}}}},
      "B": {"properties": {"Mode": {"constrainedSet": {"setProperty": "\u001b]0;owned\u0007"}}}}
  }})");
  space.write("wrong.json", R"({"classes": {"A": {"\u001b]0;owned\u0007": 1}}})");
  const std::vector<std::vector<std::string>> commands = {
      {"update", "--class-table", "table.json", "--color=never", "A"},
      {"actions", "--class-table", "table.json", "--color=never", "A"},
      {"classes", "--class-table", "table.json", "--color=never", "B"},
      {"update", "--class-table", "wrong.json", "--color=never", "A"},
  };
  for (const auto& command : commands) {
    const std::string output = outputOnTerminal(space, command);
    EXPECT_NE(output.find(shownTitle), std::string::npos) << output;
    expectNoControls(output, command.front());
  }
}

TEST(Terminal, ADiffInAPipeCanBeApplied) {
  const Workspace space;
  const std::string source = classWithComment(title + "\u009b31m\u202e\r\x7f");
  space.write("A.vlm", source);
  ASSERT_EQ(space.soca({"update", "--write"}).exitCode, 0);
  const std::string updated = space.read("A.vlm");
  ASSERT_EQ(space.soca({"undo"}).exitCode, 0);
  ASSERT_EQ(space.read("A.vlm"), source);
  const auto applied = space.run({"sh", "-c", programPath() + " update | git apply"});
  EXPECT_EQ(applied.exitCode, 0) << applied.err;
  EXPECT_EQ(space.read("A.vlm"), updated);
}

}  // namespace
}  // namespace soca::testing
