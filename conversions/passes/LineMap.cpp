#include "conversions/passes/LineMap.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace soca {

void LineMap::add(std::shared_ptr<const SourceFile> newLines,
                  std::shared_ptr<const fl::ustring> oldText) {
  // The lines of a large class, or of many passes, take more memory than their numbers.
  constexpr std::size_t large = 100'000;
  constexpr std::size_t many = 4;
  const bool isLarge = newLines->getNumberOfLines() > large;
  pending_.push_back({std::move(oldText), std::move(newLines)});
  if (isLarge || pending_.size() >= many) read();
}

void LineMap::read() const {
  for (const Pass& pass : pending_) read(*pass.newLines);
  pending_.clear();
}

void LineMap::read(const SourceFile& newLines) const {
  const auto& lines = newLines.getLines();
  std::vector<std::uint32_t> oldLines;
  oldLines.reserve(lines.size());
  const auto oldOf = [&](std::size_t line) {
    return oldLines_.empty() ? static_cast<std::uint32_t>(line) : oldLines_[line];
  };
  bool isJoined = false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    // Most lines are in runs of untouched ones.
    const std::size_t first = i + (isJoined ? 1 : 0);
    while (i < lines.size() && lines[i].flags == 0) ++i;
    for (std::size_t line = first; line < i; ++line) oldLines.push_back(oldOf(line));
    if (first <= i) isJoined = false;
    if (i == lines.size()) break;
    if ((lines[i].flags & SourceFile::LineDeleted) != 0) continue;
    if (!isJoined) oldLines.push_back(oldOf(i));
    const auto ends = std::ranges::count(lines[i].text, u'\n');
    oldLines.insert(oldLines.end(), static_cast<std::size_t>(ends), oldOf(i));
    isJoined = (lines[i].flags & SourceFile::LineNoNewline) != 0;
  }
  oldLines_ = std::move(oldLines);
}

LinePlace LineMap::toOld(const LinePlace& place) const {
  read();
  if (oldLines_.empty() || place.line == 0) return place;
  const auto oldOf = [&](std::uint64_t line) {
    return std::uint64_t{oldLines_[std::min<std::size_t>(line, oldLines_.size()) - 1]} + 1;
  };
  LinePlace old = place;
  old.line = oldOf(place.line);
  if (place.endLine != 0) old.endLine = std::max(old.line, oldOf(place.endLine));
  return old;
}

}  // namespace soca
