#include "service/ActionApplier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"
#include "tests/service/SyntheticActions.h"

namespace soca {
namespace {

using foundation::core::except::IMsgIDException;
using testing::edit;
using testing::group;
using testing::listOf;

TEST(ActionGroup, Extent) {
  EXPECT_EQ(group(edit({{{3, 1}, {3, 5}}}))->getExtent(), (Extent{{3, 1}, {3, 5}}));
  const auto spread =
      group(edit({{{3, 2}, {4, 1}}}), edit({{{2, 9}, {2, 50}}}), edit({{{3, 8}, {3, 40}}}));
  EXPECT_EQ(spread->getExtent(), (Extent{{2, 9}, {4, 1}}));
  constexpr auto allOnes = ~std::uint64_t{0};
  EXPECT_EQ(group()->getExtent(), (Extent{{allOnes, allOnes}, {0, 0}}));
}

// The text after the actions; "overlap" if one overlaps an earlier one.
std::string applied(const fl::ustring& text, const ActionList& actions) {
  SourceFile file(text);
  ActionApplier applier(&file, u"/a/C.vlm");
  try {
    for (const auto& action : actions) applier.apply(*action);
  } catch (const IMsgIDException& failure) {
    EXPECT_EQ(failure.GetID(), "VELUM:system:Analyzer:OverlappingExtent");
    EXPECT_NE(fl::i18n::to_string(failure.GetUnicodeMessageTxt()).find("'/a/C.vlm'"),
              std::string::npos);
    return "overlap, " + fl::i18n::to_string(file.getText());
  }
  return fl::i18n::to_string(file.getText());
}

TEST(ActionApplier, Overlaps) {
  struct Row {
    const char* shows;
    ActionList actions;
    const char* expected;
  };
  Row rows[] = {
      {"two that begin on one line", listOf(edit({{{0, 2}, {0, 3}}}), edit({{{0, 0}, {0, 1}}})),
       "overlap, ab\nd\ne\nf"},
      {"two without changes on one line",
       listOf(edit({{{0, 2}, {0, 2}}}), edit({{{0, 0}, {0, 0}}})), "overlap, abc\nd\ne\nf"},
      {"the same two as a group", listOf(group(edit({{{0, 2}, {0, 3}}}), edit({{{0, 0}, {0, 1}}}))),
       "b\nd\ne\nf"},
      {"one on the last line of another",
       listOf(edit({{{0, 3}, {1, 0}}, u"-"}), edit({{{1, 0}, {1, 1}}})), "overlap, abc-d\ne\nf"},
      {"the same two in the other order",
       listOf(edit({{{1, 0}, {1, 1}}, u"D"}), edit({{{0, 3}, {1, 0}}, u"-"})), "abc-D\ne\nf"},
      {"one from above that overlaps another",
       listOf(edit({{{1, 0}, {1, 1}}, u"D"}), edit({{{0, 1}, {2, 0}}})), "ae\nf"},
      {"one between the children of a group",
       listOf(group(edit({{{2, 0}, {2, 1}}, u"E"}), edit({{{0, 0}, {0, 1}}, u"A"})),
              edit({{{1, 0}, {1, 1}}})),
       "overlap, Abc\nd\nE\nf"},
      {"two groups on one line",
       listOf(group(edit({{{0, 2}, {0, 3}}})), group(edit({{{0, 0}, {0, 1}}}))),
       "overlap, ab\nd\ne\nf"},
      {"the test continues after a group",
       listOf(group(edit({{{0, 0}, {0, 1}}})), edit({{{1, 0}, {1, 1}}, u"D"}),
              edit({{{1, 0}, {1, 0}}})),
       "overlap, bc\nD\ne\nf"},
      {"a group in a group is ignored",
       listOf(group(group(edit({{{1, 0}, {1, 1}}})), edit({{{0, 0}, {0, 1}}}))), "bc\nd\ne\nf"},
      {"a group in a group is claimed with it",
       listOf(group(group(edit({{{1, 0}, {1, 1}}})), edit({{{0, 0}, {0, 1}}})),
              edit({{{1, 0}, {1, 0}}})),
       "overlap, bc\nd\ne\nf"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(applied(u"abc\nd\ne\nf", row.actions), row.expected) << row.shows;
  }
}

TEST(ActionApplier, ColumnsInAGroupAreNotAdjusted) {
  const ActionList actions = listOf(group(edit({{{0, 0}, {0, 3}}}), edit({{{0, 2}, {0, 3}}})));
  EXPECT_THROW(applied(u"abc", actions), std::out_of_range);
}

TEST(ActionApplier, StopsBeforeAMissingDelimiter) {
  SourceFile file(u"abc\nd e\nf");
  ActionApplier applier(&file, u"/a/C.vlm");
  const auto apply = [&](const Extent& extent, std::vector<PlannedEdit> edits) {
    return applier.tryApply({.extent = extent, .edits = std::move(edits)});
  };
  EXPECT_EQ(apply({{0, 0}, {0, 1}}, {{{{0, 0}, {0, 1}}}}), std::nullopt);
  const std::vector<PlannedEdit> failing = {
      {{{2, 0}, {2, 1}}, u"F"}, {{{1, 0}, {1, 1}}, u"D", 1}, {{{1, 0}, {1, 0}}, u"X"}};
  EXPECT_EQ(apply({{1, 0}, {2, 1}}, failing), (SourcePosition{1, 2}));
  EXPECT_EQ(fl::i18n::to_string(file.getText()), "bc\nd e\nF");
  EXPECT_THROW(apply({{2, 0}, {2, 0}}, {}), IMsgIDException);
}

TEST(ClaimedExtents, OverlapAsTheSingleExtentsDo) {
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    ClaimedExtents claimed;
    std::vector<Extent> all;
    for (int i = 0; i < 20; ++i) {
      const Extent extent = {{random() % 30, 0}, {random() % 30, 0}};
      EXPECT_EQ(claimed.collidesWith(extent), std::ranges::any_of(all, [&](const Extent& other) {
                  return extent.startsWithinLinesOf(other);
                }));
      claimed.add(extent);
      all.push_back(extent);
    }
  }
}

}  // namespace
}  // namespace soca
