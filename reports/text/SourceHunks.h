// The parts of a text that an update changes or that messages refer to, with what it changes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "conversions/passes/TextChanges.h"
#include "platform/text/UString.h"

namespace soca {

// Lengths are in UTF-16 code units. Texts are UTF-8, in which an unpaired surrogate is U+FFFD, also
// one unit long.
struct HunkEdit {
  // The length of the unchanged text before it, since the edit before or the start of the hunk.
  std::size_t gap = 0;
  // The old text, and what replaces it; either may be empty.
  std::size_t length = 0;
  std::string text;
  // The indices of the conversions that make it.
  std::vector<std::uint32_t> conversions;
};

struct SourceHunk {
  // The first line, counted from 1.
  std::uint64_t line = 1;
  // Whole lines of the old text, without the last line end.
  std::string text;
  std::vector<HunkEdit> edits;
};

// The lines of the changes with three lines before and after them, and each of `lines` with one;
// these are counted from 1, in any order, and unknown ones are 0. Stretches that touch are one
// hunk. In the order of the text.
std::vector<SourceHunk> makeHunks(fl::ustring_view oldText, const TextChanges& changes,
                                  const std::vector<std::uint64_t>& lines);

}  // namespace soca
