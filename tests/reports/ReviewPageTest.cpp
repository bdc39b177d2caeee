// The data of the review page, and the file in which it is. tests/browser has what the page does.
#include <fmt/core.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "reports/text/SourceHunks.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

// "line: text" of each hunk with its edits, as `[old|new]`.
std::string print(const std::vector<SourceHunk>& hunks) {
  std::string text;
  for (const SourceHunk& hunk : hunks) {
    text += fmt::format("{}{}: ", text.empty() ? "" : " / ", hunk.line);
    std::size_t at = 0;
    for (const HunkEdit& edit : hunk.edits) {
      text += hunk.text.substr(at, edit.gap) + '[' + hunk.text.substr(at + edit.gap, edit.length) +
              '|' + edit.text + ']';
      at += edit.gap + edit.length;
    }
    text += hunk.text.substr(at);
  }
  return text;
}

TEST(ReviewPage, HunksAreWholeLinesAroundWhatIsShown) {
  const fl::ustring text = u"a\nb\nc\nd\ne\nf\ng\nh\ni\nj\nk\nl\n";
  const struct {
    const char* shows;
    fl::ustring text;
    TextChanges changes;
    std::vector<std::uint64_t> lines;
    const char* expected;
  } rows[] = {
      {"nothing", text, {}, {}, ""},
      {"three lines around a change", text, {{8, 1, u"E", {0}}}, {}, "2: b\nc\nd\n[e|E]\nf\ng\nh"},
      {"the ends of the text", u"a", {{0, 0, u"<", {0}}, {1, 0, u">", {0}}}, {}, "1: [|<]a[|>]"},
      {"the lines of a long change",
       text,
       {{0, 12, u"", {0}}},
       {},
       "1: [a\nb\nc\nd\ne\nf\n|]g\nh\ni\nj"},
      {"one line around a place, in any order", text, {}, {6, 2}, "1: a\nb\nc / 5: e\nf\ng"},
      {"an unknown place", text, {}, {0, 99}, ""},
      {"stretches that touch", text, {}, {2, 5}, "1: a\nb\nc\nd\ne\nf"},
      {"changes of one stretch",
       text,
       {{0, 1, u"A", {0}}, {8, 1, u"E", {1}}},
       {12},
       "1: [a|A]\nb\nc\nd\n[e|E]\nf\ng\nh / 11: k\nl\n"},
      {"no line end at the end", u"a\nb", {{2, 1, u"", {0}}}, {}, "1: a\n[b|]"},
  };
  for (const auto& [shows, from, changes, lines, expected] : rows) {
    EXPECT_EQ(print(makeHunks(from, changes, lines)), expected) << shows;
  }
  // As in the text of a browser, what stands for an unpaired surrogate is one unit long.
  const auto hunks = makeHunks(u"\xD800x", {{1, 1, u"y", {0}}}, {});
  EXPECT_EQ(hunks.front().text, "\uFFFDx");
  EXPECT_EQ(hunks.front().edits.front().gap, 1U);
}

std::size_t count(std::string_view text, std::string_view what) {
  std::size_t number = 0;
  for (auto at = text.find(what); at != text.npos; at = text.find(what, at + 1)) ++number;
  return number;
}

TEST(ReviewPage, NoTextEndsAScript) {
  const Workspace space;
  const std::string markup = "</script><!--<script>\u2028\x01 ";
  space.write("A.vlm", "% " + markup + "\n" + outdatedClass("A"));
  space.write("B.vlm", "classdef B < velum.System\n  x( % " + markup + "\nend\n");
  const auto page = space.soca({"update", "--format", "html"});
  EXPECT_EQ(page.exitCode, 2);
  EXPECT_EQ(count(page.out, "</script>"), 6U);
  EXPECT_NE(page.out.find("\\u003c/script>\\u003c!--\\u003cscript>\u2028\\u0001"),
            std::string::npos);
}

TEST(ReviewPage, ReportsAreWholeFilesOrNone) {
  const Workspace space;
  space.write("A.vlm", outdatedClass("A"));
  space.write("old.html", "old");
  space.write("folder/x", "");
  ASSERT_EQ(::mkfifo((space.path() / "pipe").c_str(), 0600), 0);
  const struct {
    const char* shows;
    std::vector<std::string> arguments;
    int exitCode;
    const char* error;
  } rows[] = {
      {"a class file", {"--report", "A.vlm"}, 2, "--report would replace a class file: 'A.vlm'"},
      {"a p-file", {"--report", "B.p"}, 2, "--report would replace a class file: 'B.p'"},
      {"the selection",
       {"--selection", "s.json", "--report", "s.json"},
       2,
       "--report would replace a file that is read: 's.json'"},
      {"no name", {"--report", ""}, 2, "--report takes the name of a file"},
      {"a folder",
       {"--report", "folder"},
       2,
       "the report 'folder' can't be written: it is a folder"},
      {"a device", {"--report", "pipe"}, 2, "can't be written: it is no regular file"},
      {"no folder", {"--report", "no/p.html"}, 2, "'no/p.html' can't be written: No such file"},
      {"the service",
       {"--as-service", "--report", "p.html"},
       2,
       "--report and --as-service cannot"},
      {"its page",
       {"--as-service", "--format", "html"},
       2,
       "--format html and --as-service cannot"},
      {"one text",
       {"--stdin-path", "A.vlm", "--report", "p.html", "-"},
       2,
       "the page is about files"},
      {"a failed run", {"--report", "failed.html", "Missing"}, 2, "There is no class 'Missing'"},
      {"over an old one", {"--report", "old.html", "-q"}, 0, "looked at 1 class"},
      {"beside data", {"--report", "json.html", "--format", "json"}, 0, "looked at 1 class"},
      {"of what is written", {"--report", "written.html", "--write"}, 0, "undo"},
  };
  const std::string json = space.soca({"update", "--format", "json"}).out;
  const std::string html = space.soca({"update", "--format", "html"}).out;
  for (const auto& [shows, arguments, exitCode, error] : rows) {
    std::vector<std::string> command = {"update"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto result = space.soca(command);
    EXPECT_EQ(result.exitCode, exitCode) << shows;
    EXPECT_NE(result.err.find(error), std::string::npos) << shows << ": " << result.err;
    EXPECT_EQ(result.out == json, arguments.back() == "json") << shows;
  }
  const auto files = space.readAll();
  EXPECT_EQ(files.at("old.html"), html);
  EXPECT_EQ(files.at("json.html"), html);
  EXPECT_NE(files.at("failed.html").find(R"(["Missing",)"), std::string::npos);
  // What is written is not to be chosen any more, but shown as it was.
  EXPECT_NE(files.at("written.html").find(R"("isWritten":true)"), std::string::npos);
  EXPECT_NE(files.at("written.html").find(R"(["A","A.vlm",)"), std::string::npos);
  std::vector<std::string> names;
  for (const auto& [name, bytes] : files) names.push_back(name);
  EXPECT_EQ(names, (std::vector<std::string>{"A.vlm", "failed.html", "folder/x", "json.html",
                                             "old.html", "written.html"}));
}

TEST(ReviewPage, CommandsRepeatTheRun) {
  const Workspace space;
  space.write("it's src/A.vlm", outdatedClass("A"));
  space.write("t.json", "{}");
  const auto page = space.soca({"update", "-p", "it's src", "--class-table", "t.json", "-s",
                                "--format", "html", "it's src"});
  EXPECT_EQ(page.exitCode, 0) << page.err;
  const auto shown = [&](const std::string& text) {
    return page.out.find(nlohmann::json(text).dump()) != std::string::npos;
  };
  EXPECT_TRUE(shown(R"(soca update -p 'it'\''s src' --class-table t.json --superclasses)"));
  EXPECT_TRUE(shown(R"('it'\''s src')"));
}

}  // namespace
}  // namespace soca::testing
