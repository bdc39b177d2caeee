#include <gtest/gtest.h>

#include <algorithm>

#include <random>

#include "cli/terminal/MessageText.h"
#include "conversions/LineDiff.h"
#include "reports/text/Escapes.h"
#include "reports/text/FileNames.h"
#include "reports/text/UnifiedDiff.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::cli {
namespace {

struct DiffCase {
  const char* what;
  const char* before;
  const char* after;
  // Without the two header lines.
  const char* diff;
};

TEST(UnifiedDiff, Forms) {
  const DiffCase table[] = {
      {"equal texts have none", "a\nb\n", "a\nb\n", ""},
      {"a changed line with its context", "1\n2\n3\n4\n5\n6\n7\n8\n9\n",
       "1\n2\n3\n4\nX\n6\n7\n8\n9\n", "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+X\n 6\n 7\n 8\n"},
      {"changes six lines apart share a hunk", "a\n1\n2\n3\n4\n5\n6\nb\n",
       "A\n1\n2\n3\n4\n5\n6\nB\n", "@@ -1,8 +1,8 @@\n-a\n+A\n 1\n 2\n 3\n 4\n 5\n 6\n-b\n+B\n"},
      {"changes seven lines apart have two hunks", "a\n1\n2\n3\n4\n5\n6\n7\nb\n",
       "A\n1\n2\n3\n4\n5\n6\n7\nB\n",
       "@@ -1,4 +1,4 @@\n-a\n+A\n 1\n 2\n 3\n@@ -6,4 +6,4 @@\n 5\n 6\n 7\n-b\n+B\n"},
      {"an added line end", "a", "a\n", "@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+a\n"},
      {"a line end that stays missing", "a\nb", "c\nb",
       "@@ -1,2 +1,2 @@\n-a\n+c\n b\n\\ No newline at end of file\n"},
      {"an empty file is filled", "", "a\n", "@@ -0,0 +1 @@\n+a\n"},
      {"a file is emptied", "a\n", "", "@@ -1 +0,0 @@\n-a\n"},
      {"bytes are copied unchanged", "\xe4\r\nb\r\n", "\xe4\r\nc\r\n",
       "@@ -1,2 +1,2 @@\n \xe4\r\n-b\r\n+c\r\n"},
      {"one of two equal lines is removed", "a\na\nb\n", "a\nb\n", "@@ -1,3 +1,2 @@\n a\n-a\n b\n"},
  };
  for (const DiffCase& row : table) {
    std::string diff = unifiedDiff("f", row.before, row.after);
    const std::string header = "--- a/f\n+++ b/f\n";
    if (diff.starts_with(header)) diff.erase(0, header.size());
    EXPECT_EQ(diff, row.diff) << row.what;
  }
}

TEST(UnifiedDiff, QuotesNamesLikeGit) {
  EXPECT_EQ(quoteForDiff("a/b c.vlm"), "a/b c.vlm");
  EXPECT_EQ(quoteForDiff("a/\u00e4\t\"\\\x01.vlm"), R"("a/\303\244\t\"\\\001.vlm")");
  EXPECT_EQ(unifiedDiff("b c", "", "x\n"), "--- a/b c\t\n+++ b/b c\t\n@@ -0,0 +1 @@\n+x\n");
}

TEST(UnifiedDiff, ColorsDoNotChangeTheText) {
  EXPECT_EQ(colorDiff("--- a/f\n+++ b/f\n@@ -1 +1 @@\n--- x\n+y\n z\n"),
            "\x1b[1m--- a/f\x1b[m\n\x1b[1m+++ b/f\x1b[m\n\x1b[36m@@ -1 +1 @@\x1b[m\n"
            "\x1b[31m--- x\x1b[m\n\x1b[32m+y\x1b[m\n z\n");
}

TEST(Messages, TheSeverityIsColored) {
  EXPECT_EQ(colorMessages("a.vlm:1:2: error: a: warning: b\n    1 | \tx ^\n      | \t  ^\n"
                          "b.vlm: note: c\n  hint: d\nhint: error\n"),
            "a.vlm:1:2: \x1b[1;31merror:\x1b[m a: warning: b\n    1 | \tx ^\n"
            "      | \t  \x1b[1;32m^\x1b[m\n"
            "b.vlm: \x1b[36mnote:\x1b[m c\n  \x1b[36mhint:\x1b[m d\nhint: error\n");
}

TEST(Messages, HaveEscapesForControlsButTabsAndLineEnds) {
  EXPECT_EQ(withEscapes("a\tb\n\x1b\x7f\xC2\x80\xC2\x9F\xC2\xA0"),
            "a\tb\n\\u001b\\u007f\\u0080\\u009f\xC2\xA0");
}

// A text of lines from a small set, and the same text with some parts changed.
struct TextPair {
  std::vector<std::string> before;
  std::vector<std::string> after;
};

TextPair makeTexts(std::mt19937& random) {
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const std::size_t kinds = std::size_t{2} << below(9);
  const auto line = [&] { return "--- line " + std::to_string(below(kinds)); };
  TextPair pair;
  for (std::size_t i = below(600); i > 0; --i) pair.before.push_back(line());
  pair.after = pair.before;
  for (std::size_t i = below(12); i > 0; --i) {
    const auto at = pair.after.begin() + static_cast<std::ptrdiff_t>(below(pair.after.size() + 1));
    const auto room = static_cast<std::size_t>(pair.after.end() - at);
    const auto gap =
        pair.after.erase(at, at + static_cast<std::ptrdiff_t>(std::min(room, below(5))));
    const std::vector<std::string> lines(below(5), line());
    pair.after.insert(gap, lines.begin(), lines.end());
  }
  return pair;
}

std::string join(const std::vector<std::string>& lines, bool endsLine) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  if (!endsLine && !text.empty()) text.pop_back();
  return text;
}

TEST(UnifiedDiff, GitAndPatchApplyIt) {
  const testing::Workspace space;
  std::mt19937 random(7);
  for (int round = 0; round < 60; ++round) {
    const TextPair pair = makeTexts(random);
    const std::string before = join(pair.before, random() % 2 == 0);
    const std::string after = join(pair.after, random() % 2 == 0);
    const std::string diff = unifiedDiff("f", before, after);
    if (diff.empty()) {
      EXPECT_EQ(before, after);
      continue;
    }
    for (const auto& command : {std::vector<std::string>{"git", "apply", "../f.diff"},
                                {"patch", "-s", "-p1", "-i", "../f.diff"}}) {
      space.write("in/f", before);
      space.write("f.diff", diff);
      const testing::Workspace& here = space;
      std::vector<std::string> words = {"env", "-C", "in"};
      words.insert(words.end(), command.begin(), command.end());
      const auto result = here.run(words);
      EXPECT_EQ(result.exitCode, 0) << result.err << result.out << diff;
      const bool isThere = std::filesystem::exists(space.path() / "in/f");
      EXPECT_EQ(isThere ? space.read("in/f") : "", after) << diff;
    }
  }
}

TEST(LineDiff, TheCostIsBounded) {
  // No line is in both texts, or unique, so that there is nothing to align them by.
  std::vector<std::string_view> before;
  std::vector<std::string_view> after;
  for (std::size_t i = 0; i < 400'000; ++i) {
    before.emplace_back(i % 3 == 0 ? "a\n" : "b\n");
    after.emplace_back(i % 7 == 0 ? "b\n" : "a\n");
  }
  const auto changes = diffLines(before, after);
  ASSERT_FALSE(changes.empty());
  EXPECT_LE(changes.size(), 3);
}

TEST(LineDiff, AMovedBlockIsOneDeletionAndOneInsertion) {
  std::vector<std::string> lines;
  lines.reserve(2000);
  for (int i = 0; i < 2000; ++i) lines.push_back("line " + std::to_string(i) + '\n');
  auto moved = lines;
  std::rotate(moved.begin() + 100, moved.begin() + 110, moved.begin() + 1500);
  const std::vector<std::string_view> before(lines.begin(), lines.end());
  const std::vector<std::string_view> after(moved.begin(), moved.end());
  const std::vector<LineChange> expected = {{100, 10, 100, 0}, {1500, 0, 1490, 10}};
  EXPECT_EQ(diffLines(before, after), expected);
}

}  // namespace
}  // namespace soca::cli
