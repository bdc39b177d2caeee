#include "model/Extent.h"

#include <gtest/gtest.h>

#include "tests/model/ModelOfText.h"

namespace soca {
namespace {

using testing::printed;

TEST(Extent, StartsWithinLinesOf) {
  struct Row {
    const char* shows;
    Extent extent;
    Extent other;
    bool expected;
  };
  const Row rows[] = {
      {"the same line, other columns", {{2, 50}, {2, 60}}, {{2, 0}, {2, 1}}, true},
      {"the other's last line, after its end", {{4, 9}, {7, 0}}, {{2, 0}, {4, 1}}, true},
      {"a line in between", {{3, 0}, {3, 0}}, {{2, 0}, {4, 1}}, true},
      {"a later line", {{5, 0}, {5, 1}}, {{2, 0}, {4, 1}}, false},
      {"above, although it covers the other", {{1, 0}, {9, 0}}, {{2, 0}, {4, 1}}, false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.extent.startsWithinLinesOf(row.other), row.expected) << row.shows;
  }
}

TEST(Extent, Prints) {
  EXPECT_EQ(printed(Extent{{3, 4}, {3, 9}}), "From (3,4) to (3,9)");
  EXPECT_EQ(printed(Extent{{1234567, 4}, {1234567, 4}}), "From (1234567,4) to (1234567,4)");
  EXPECT_EQ(printed(SourcePosition{0, ~std::uint64_t{0}}), "(0,18446744073709551615)");
}

}  // namespace
}  // namespace soca
