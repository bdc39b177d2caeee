// A span of one file's text, as lines and columns.
#pragma once

#include <ostream>

#include "model/SourcePosition.h"

namespace soca {

// Half-open: `end` is just after the last code unit; `start == end` is a place of insertion. Not
// normalised: an extent whose end is before its start stays so.
struct Extent {
  SourcePosition start;
  SourcePosition end;

  // Whether this extent begins on a line that `other` touches. Columns are ignored, because each
  // line takes one edit.
  bool startsWithinLinesOf(const Extent& other) const {
    return other.start.line <= start.line && start.line <= other.end.line;
  }

  friend bool operator==(const Extent&, const Extent&) = default;
};

// Prints "From (3,4) to (3,9)", with the zero-based numbers.
std::basic_ostream<char16_t>& operator<<(std::basic_ostream<char16_t>& out, const Extent& extent);

}  // namespace soca
