#include "conversions/KeptText.h"

#include <gtest/gtest.h>

namespace soca::cli {
namespace {

// An edit with its flags; columns and lines are zero-based.
PlannedEdit edit(std::uint64_t line, std::uint64_t column, std::uint64_t endLine,
                 std::uint64_t endColumn, const char16_t* text = u"", std::uint64_t flags = 0) {
  return {{{line, column}, {endLine, endColumn}}, text, flags};
}

struct KeptCase {
  const char* what;
  const char16_t* before;
  // In the order in which they are applied.
  std::vector<PlannedEdit> edits;
  const char16_t* after;
  bool isRight;
};

TEST(KeptText, OnlyTextThatEditsRemoveMayBeMissing) {
  const std::vector<KeptCase> table = {
      {"a word is replaced", u"a bb c\n", {edit(0, 2, 0, 4, u"xyz")}, u"a xyz c\n", true},
      {"something else changed too", u"a bb c\n", {edit(0, 2, 0, 4, u"x")}, u"a x d\n", false},
      {"a blank outside the edit is missing",
       u"a  bb c\n",
       {edit(0, 3, 0, 5, u"x")},
       u"a x c\n",
       false},
      {"an untouched line is missing", u"a\nb\nc\n", {edit(0, 0, 0, 1, u"x")}, u"x\nc\n", false},
      {"an untouched blank line is missing",
       u"a\n\nc\n",
       {edit(0, 0, 0, 1, u"x")},
       u"x\nc\n",
       false},
      {"text was added", u"a\n", {edit(0, 0, 0, 1, u"x")}, u"x\ny\n", false},
      {"an emptied line is removed", u"a\n  b\nc\n", {edit(1, 2, 1, 3)}, u"a\nc\n", true},
      {"an edited line with a bare continuation is removed",
       u"a\n b, ... why\nc\n",
       {edit(1, 1, 1, 3)},
       u"a\nc\n",
       true},
      {"an emptied line must not stay", u"a\n  b\nc\n", {edit(1, 2, 1, 3)}, u"a\n  \nc\n", false},
      {"a delimiter is removed too", u"  A = 1 ; B\n", {edit(0, 2, 0, 7, u"", 1)}, u"   B\n", true},
      {"a delimiter is not removed without the option",
       u"  A = 1; B\n",
       {edit(0, 2, 0, 7)},
       u"   B\n",
       false},
      {"blanks up to a comment are removed too",
       u"  A = 1  % c\n",
       {edit(0, 2, 0, 7, u"", 1)},
       u"  % c\n",
       true},
      {"a delimiter after a continuation",
       u" A ...\n ; B\nc\n",
       {edit(0, 1, 0, 2, u"", 1)},
       u" B\nc\n",
       true},
      {"a rest is joined to the first line",
       u"a b\nc d\ne\n",
       {edit(0, 2, 1, 2)},
       u"a d\ne\n",
       true},
      {"a rest may stay on a line of its own",
       u"a b\nx\nc d\ne\n",
       {edit(0, 2, 2, 2)},
       u"a \nd\ne\n",
       true},
      {"the line end before a removed rest stays",
       u"a b\nc\nd\n",
       {edit(0, 2, 1, 1)},
       u"a \nd\n",
       true},
      {"that line end must not be removed", u"a b\nc\nd\n", {edit(0, 2, 1, 1)}, u"a d\n", false},
      {"a blank last line is removed", u"a\nb\n  ", {edit(0, 0, 0, 1, u"x")}, u"x\nb\n", true},
      {"a last line that begins with a continuation is removed",
       u"a\n... b",
       {edit(0, 0, 0, 1, u"x")},
       u"x\n",
       true},
      {"a last line with text stays", u"a\n  b", {edit(0, 0, 0, 1, u"x")}, u"x\n", false},
      {"new text may have lines of its own",
       u"  end\n",
       {edit(0, 2, 0, 2, u"  x;\n\n  ")},
       u"    x;\n\n  end\n",
       true},
      {"of two insertions the last one is first in the text",
       u"ab\n",
       {edit(0, 1, 0, 1, u"2"), edit(0, 1, 0, 1, u"1")},
       u"a12b\n",
       true},
      {"the reverse order of two insertions",
       u"ab\n",
       {edit(0, 1, 0, 1, u"2"), edit(0, 1, 0, 1, u"1")},
       u"a21b\n",
       false},
      {"edits overlap",
       u"abcd\n",
       {edit(0, 0, 0, 3, u"x"), edit(0, 2, 0, 2, u"y")},
       u"xyd\n",
       false},
      {"an edit is outside the text", u"ab\n", {edit(0, 5, 0, 6)}, u"ab\n", false},
      {"an edit ends before it begins", u"abcd\n", {edit(0, 3, 0, 1)}, u"abcd\n", false},
      {"carriage returns are blanks at a line's end",
       u"a\r\n b\r\nc\r\n",
       {edit(1, 1, 1, 2)},
       u"a\r\nc\r\n",
       true},
  };
  for (const KeptCase& row : table) {
    const PlannedAction action{RuleFamilyType::attributes, true, {}, row.edits};
    const auto lost = findLostText(row.before, row.after, {action});
    EXPECT_EQ(!lost.has_value(), row.isRight) << row.what << ": " << (lost ? lost->text : "right");
  }
}

}  // namespace
}  // namespace soca::cli
