// Which lines of two texts belong together.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace soca {

// A stretch of lines that was replaced by another; either may be empty. Lines are zero-based.
struct LineChange {
  std::size_t oldStart = 0;
  std::size_t oldCount = 0;
  std::size_t newStart = 0;
  std::size_t newCount = 0;

  friend bool operator==(const LineChange&, const LineChange&) = default;
};

// The lines of a text, each with its line feed; the last may have none.
std::vector<std::string_view> splitIntoLines(std::string_view text);

// The changes from top to bottom, with at least one common line between two of them.
//
// Lines that occur once on either side and in the same order hold the texts together. The shortest
// script is looked for only between them, and a stretch that is too large for that counts as
// replaced as a whole, so the work grows with the number of lines and not with its square.
std::vector<LineChange> diffLines(const std::vector<std::string_view>& oldLines,
                                  const std::vector<std::string_view>& newLines);

}  // namespace soca
