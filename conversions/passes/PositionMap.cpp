#include "conversions/passes/PositionMap.h"

#include <algorithm>

namespace soca {

PositionMap::PositionMap(fl::ustring_view oldText, const TextChanges& changes)
    : old_(makeSide(oldText)), new_(makeSide(applyChanges(oldText, changes))) {
  std::size_t inserted = 0;
  std::size_t deleted = 0;
  for (const TextChange& change : changes) {
    const std::size_t newStart = change.offset + inserted - deleted;
    old_.changes.push_back({change.offset, change.offset + change.length});
    new_.changes.push_back({newStart, newStart + change.text.size()});
    inserted += change.text.size();
    deleted += change.length;
  }
}

std::optional<LinePlace> PositionMap::toNew(const LinePlace& place) const {
  if (place.line == 0) return place;
  const Range line = old_.rangeOfLine(place.line);
  const auto change = old_.changeAt(line.start);
  if (!change) return map(place, old_, new_);
  const Range& deleted = old_.changes[*change];
  const Range& inserted = new_.changes[*change];
  const bool isGone =
      inserted.start == inserted.end && line.start < deleted.end && line.end <= deleted.end;
  if (isGone) return std::nullopt;
  return map(place, old_, new_);
}

PositionMap::Range PositionMap::Side::rangeOfLine(std::size_t line) const {
  const std::size_t index = std::clamp<std::size_t>(line, 1, lineStarts.size()) - 1;
  const bool isLast = index + 1 == lineStarts.size();
  return {lineStarts[index], isLast ? size : lineStarts[index + 1]};
}

std::size_t PositionMap::Side::lineOf(std::size_t offset) const {
  return static_cast<std::size_t>(std::ranges::upper_bound(lineStarts, offset) -
                                  lineStarts.begin());
}

std::size_t PositionMap::Side::offsetOf(std::size_t line, std::size_t column) const {
  const Range range = rangeOfLine(line);
  const std::size_t end = line < lineStarts.size() ? range.end - 1 : range.end;
  return range.start + std::min(std::max<std::size_t>(column, 1) - 1, end - range.start);
}

std::optional<std::size_t> PositionMap::Side::changeAt(std::size_t offset) const {
  const auto next = std::ranges::upper_bound(changes, offset, {}, &Range::start);
  if (next == changes.begin()) return std::nullopt;
  return static_cast<std::size_t>(next - changes.begin()) - 1;
}

PositionMap::Side PositionMap::makeSide(fl::ustring_view text) {
  Side side;
  side.size = text.size();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\n') side.lineStarts.push_back(i + 1);
  }
  return side;
}

std::size_t PositionMap::map(std::size_t offset, const Side& from, const Side& to) {
  const auto change = from.changeAt(offset);
  if (!change) return offset;
  const std::size_t end = from.changes[*change].end;
  if (offset < end) return to.changes[*change].start;
  return to.changes[*change].end + (offset - end);
}

std::size_t PositionMap::mapEnd(std::size_t end, const Side& from, const Side& to) {
  const auto change = from.changeAt(end - 1);
  if (change && end <= from.changes[*change].end) return to.changes[*change].end;
  return map(end - 1, from, to) + 1;
}

LinePlace PositionMap::map(const LinePlace& place, const Side& from, const Side& to) {
  if (place.line == 0) return place;
  const std::size_t start = from.offsetOf(place.line, place.column);
  const std::size_t end = from.offsetOf(place.endLine, place.endColumn);
  const std::size_t newStart = map(start, from, to);
  std::size_t newEnd = start < end ? mapEnd(end, from, to) : newStart;
  const std::size_t line = to.lineOf(newStart);
  // The line ends before its line end.
  if (place.endLine == place.line) newEnd = std::min(newEnd, to.offsetOf(line, to.size + 1));
  const std::size_t endLine = to.lineOf(newEnd);
  return {line, newStart - to.rangeOfLine(line).start + 1,
          newEnd - to.rangeOfLine(endLine).start + 1, endLine};
}

}  // namespace soca
