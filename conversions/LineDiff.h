// Compares two texts by lines.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace soca {

// A run of lines that is replaced by another; either may be empty. Lines are zero-based.
struct LineChange {
  std::size_t oldStart = 0;
  std::size_t oldCount = 0;
  std::size_t newStart = 0;
  std::size_t newCount = 0;

  friend bool operator==(const LineChange&, const LineChange&) = default;
};

// The lines of a text, each with its line feed; the last one may have none.
std::vector<std::string_view> splitIntoLines(std::string_view text);

// The changes from top to bottom, with at least one common line between any two.
//
// Lines that occur once on each side and in the same order are anchors. The shortest script is
// computed only between anchors, and a gap too large for that is replaced as a whole, so that the
// cost is linear in the number of lines.
std::vector<LineChange> diffLines(const std::vector<std::string_view>& oldLines,
                                  const std::vector<std::string_view>& newLines);

}  // namespace soca
