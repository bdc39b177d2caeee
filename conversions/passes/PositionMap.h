// Where positions of the text before changes are in the text after them.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "conversions/Finding.h"
#include "conversions/passes/TextChanges.h"
#include "platform/text/UString.h"

namespace soca {

// A position in unchanged text is that of the same character in the other text. A position inside
// the old or new part of a change is at the start of the other part.
//
// A place ends after its last character, and if it is on one line, it stays on one line. Lines and
// columns outside the text are taken as the nearest ones in it.
class PositionMap {
 public:
  PositionMap(fl::ustring_view oldText, const TextChanges& changes);

  // The offsets are in UTF-16 code units.
  std::size_t toNew(std::size_t offset) const { return map(offset, old_, new_); }
  std::size_t toOld(std::size_t offset) const { return map(offset, new_, old_); }

  // Empty if a change deletes the whole line on which the place begins, and has no new text. An
  // unknown place stays unknown.
  std::optional<LinePlace> toNew(const LinePlace& place) const;
  LinePlace toOld(const LinePlace& place) const { return map(place, new_, old_); }

 private:
  struct Range {
    std::size_t start = 0;
    std::size_t end = 0;
  };

  // One of the texts.
  struct Side {
    // The end of a line is after its line end, if it has one.
    Range rangeOfLine(std::size_t line) const;
    std::size_t lineOf(std::size_t offset) const;
    // The offset of a one-based line and column.
    std::size_t offsetOf(std::size_t line, std::size_t column) const;
    // The index of the last change that begins at or before the offset.
    std::optional<std::size_t> changeAt(std::size_t offset) const;

    std::vector<std::size_t> lineStarts = {0};
    std::size_t size = 0;
    // The parts of the changes.
    std::vector<Range> changes;
  };

  static Side makeSide(fl::ustring_view text);
  static std::size_t map(std::size_t offset, const Side& from, const Side& to);
  // The end of a part of the text that is not empty.
  static std::size_t mapEnd(std::size_t end, const Side& from, const Side& to);
  static LinePlace map(const LinePlace& place, const Side& from, const Side& to);

  Side old_;
  Side new_;
};

}  // namespace soca
