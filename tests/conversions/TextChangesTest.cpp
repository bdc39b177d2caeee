// Changes of several passes as one list. `[a|b]` in a text is a change from `a` to `b`.
#include "conversions/passes/TextChanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conversions/passes/PositionMap.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::cli {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

struct MarkedText {
  fl::ustring oldText;
  TextChanges changes;
};

// The changes get this conversion.
MarkedText parse(std::string_view marked, std::uint32_t conversion) {
  MarkedText result;
  const fl::ustring text = to_ustring(marked);
  for (std::size_t next = 0; next < text.size();) {
    const std::size_t start = std::min(text.find(u'[', next), text.size());
    result.oldText += text.substr(next, start - next);
    if (start == text.size()) break;
    const std::size_t middle = text.find(u'|', start);
    const std::size_t end = text.find(u']', middle);
    const std::size_t length = middle - start - 1;
    result.changes.push_back(
        {result.oldText.size(), length, text.substr(middle + 1, end - middle - 1), {conversion}});
    result.oldText += text.substr(start + 1, length);
    next = end + 1;
  }
  return result;
}

// The conversions of a change follow it: `[a|b]12`.
std::string mark(const fl::ustring& oldText, const TextChanges& changes) {
  std::string marked;
  std::size_t next = 0;
  for (const TextChange& change : changes) {
    marked += to_string(oldText.substr(next, change.offset - next));
    next = change.offset + change.length;
    marked += '[' + to_string(oldText.substr(change.offset, change.length)) + '|' +
              to_string(change.text) + ']';
    for (const std::uint32_t conversion : change.conversions) marked += std::to_string(conversion);
  }
  return marked + to_string(oldText.substr(next));
}

TEST(TextChanges, OfTwoPassesAreOneList) {
  struct Case {
    const char* what;
    const char* first;
    const char* second;
    const char* composed;
  };
  const Case table[] = {
      {"two places", "[a|x] b", "x [b|yy]", "[a|x]1 [b|yy]2"},
      {"in the other order", "a [b|yy]", "[a|x] yy", "[a|x]2 [b|yy]1"},
      {"after an insertion and a deletion", "[|new ]a [b |]c d", "new a c [d|e]",
       "[|new ]1a [b |]1c [d|e]2"},
      {"a changed word is changed again", "a [b|x] c", "a [x|y] c", "a [b|y]12 c"},
      {"inserted text is changed", "a\n[|b c\n]d\n", "a\nb [c|e]\nd\n", "a\n[|b e\n]12d\n"},
      {"inserted text grows at its start", "a[|b]", "a[|x]b", "a[|xb]12"},
      {"inserted text grows at its end", "a[|b]c", "ab[|x]c", "a[|bx]12c"},
      {"inserted text goes in part", "a[| b c]", "a b[ c|]", "a[| b]12"},
      {"a deletion takes changes and what is between them", "a [b|x] c [d|y] e", "a [x c y |]e",
       "a [b c d |]12e"},
      {"deletions beside each other", "a\n[b\n|]c\nd\n", "a\n[c\n|]d\n", "a\n[b\nc\n|]12d\n"},
      {"one pass makes two conversions of what the other one deletes", "[a|x] [b|y] c", "[x y c|z]",
       "[a b c|z]12"},
      {"a restored word is no change", "[a|x] b", "[x|a] b", "a b"},
      {"what is inserted and deleted is no change", "a[| b] c", "a[ b|] c", "a c"},
      {"of a change that is restored in part, whole words stay", "[one two three|four]",
       "[four|one twofold three]", "one [two|twofold]12 three"},
      {"pairs of surrogates", "[\U0001D49C|xy] b", "xy [b|\U0001D49C]",
       "[\U0001D49C|xy]1 [b|\U0001D49C]2"},
  };
  for (const Case& row : table) {
    SCOPED_TRACE(row.what);
    const MarkedText first = parse(row.first, 1);
    const MarkedText second = parse(row.second, 2);
    ASSERT_EQ(to_string(second.oldText), to_string(applyChanges(first.oldText, first.changes)));
    const auto composed = composeChanges(first.oldText, first.changes, second.changes);
    EXPECT_EQ(mark(first.oldText, composed), row.composed);
  }
}

TEST(TextChanges, HaveTheNumbersOfTheirConversions) {
  const TemporaryFolder folder;
  folder.write("Mixer.vlm",
               "classdef Mixer < velum.system.mixin.Propagates\n"
               "properties (Logical)\nGain = true;\nend\n"
               "properties\nMode = 'a';\nend\n"
               "properties (Constant, Hidden)\nModeSet = velum.system.StringSet({'a'});\nend\n"
               "end\n  ");
  PathDispatcher::getDispatcher().setClassPath({folder.path()});
  const PlannedClass planned =
      std::move(planUpdate(u"Mixer", allFamilies, false, {.keepLines = true}).front());
  ASSERT_EQ(planned.conversions.size(), 3U);
  EXPECT_EQ(mark(*planned.oldText, findTextChanges(planned, std::vector<std::uint32_t>{4, 2, 9})),
            "classdef Mixer < velum.[system.mixin.Propagates|System]9\n"
            "properties [(Logical)|]4\nGain [|(1, 1) logical ]4= true;\n"
            "[end\nproperties\n|]24"
            "Mode [|(1, :) char {velum.system.mustBeMember(Mode, {'a'})} ]2= 'a';\nend\n"
            "[properties (Constant, Hidden)\nModeSet = velum.system.StringSet({'a'});\nend\n|]2"
            "end\n"
            "[  |]249");
}

TEST(PositionMap, MapsPlacesBothWays) {
  struct Case {
    const char* what;
    const char* marked;
    // One-based; line 0 is a place that is gone.
    LinePlace oldPlace;
    LinePlace newPlace;
    // The old place of the new one.
    LinePlace back;
  };
  const Case table[] = {
      {"no change", "a\nbb c\n", {2, 1, 3, 2}, {2, 1, 3, 2}, {2, 1, 3, 2}},
      {"after a longer word", "[a|long] b", {1, 3, 4, 1}, {1, 6, 7, 1}, {1, 3, 4, 1}},
      {"after a new line", "a\n[|x\n]b\n", {2, 1, 2, 2}, {3, 1, 2, 3}, {2, 1, 2, 2}},
      {"after deleted lines", "[a\nb\n|]c\n", {3, 1, 2, 3}, {1, 1, 2, 1}, {3, 1, 2, 3}},
      {"a changed word", "a [bb|long] c", {1, 3, 5, 1}, {1, 3, 7, 1}, {1, 3, 5, 1}},
      {"before an insertion", "a[|b] c", {1, 1, 2, 1}, {1, 1, 2, 1}, {1, 1, 2, 1}},
      {"a part of what is changed", "a [b c d|e] f", {1, 5, 6, 1}, {1, 3, 4, 1}, {1, 3, 8, 1}},
      {"a part of a changed line", "[b c\n|d\ne\n]f", {1, 3, 4, 1}, {1, 1, 2, 1}, {1, 1, 4, 1}},
      {"a deleted word", "a [b |]c", {1, 3, 4, 1}, {1, 3, 3, 1}, {1, 5, 5, 1}},
      {"a deleted line", "a\n[bb\n|]c\n", {2, 1, 3, 2}, {}, {}},
      {"the last line is deleted", "a\n[bb|]", {2, 1, 3, 2}, {}, {}},
      {"an unknown place", "[|x]a", {}, {}, {}},
      {"outside the text", "[|x\n]a", {9, 9, 9, 9}, {2, 2, 2, 2}, {1, 2, 2, 1}},
  };
  const auto print = [](const LinePlace& place) {
    return std::to_string(place.line) + ':' + std::to_string(place.column) + '-' +
           std::to_string(place.endLine) + ':' + std::to_string(place.endColumn);
  };
  for (const Case& row : table) {
    SCOPED_TRACE(row.what);
    const MarkedText text = parse(row.marked, 1);
    const PositionMap map(text.oldText, text.changes);
    const auto place = map.toNew(row.oldPlace);
    EXPECT_EQ(print(place.value_or(LinePlace{})), print(row.newPlace));
    EXPECT_EQ(print(map.toOld(row.newPlace)), print(row.back));
  }
}

}  // namespace
}  // namespace soca::cli
