#include "conversions/passes/LineMap.h"

#include <algorithm>
#include <cstddef>
#include <ranges>
#include <utility>

#include "conversions/passes/TextChanges.h"
#include "service/PlannedClass.h"

namespace soca {
namespace {

// Whether an edited line has text and continues with the text of a later one.
bool joinsLines(const SourceFile& newLines) {
  bool isOpen = false;
  for (const SourceFile::Line& line : newLines.getLines()) {
    if (line.flags == 0 && !isOpen) continue;
    if ((line.flags & SourceFile::LineDeleted) != 0) continue;
    const bool hasText = line.text.find_first_not_of(u"\t\v\f\r ") != fl::ustring_view::npos;
    if (isOpen && hasText) return true;
    isOpen = (line.flags & SourceFile::LineNoNewline) != 0 && (isOpen || hasText);
  }
  return false;
}

TextChanges findChanges(const std::shared_ptr<const fl::ustring>& oldText,
                        const std::shared_ptr<const SourceFile>& newLines) {
  PlannedClass pass;
  pass.oldText = oldText;
  pass.newLines = newLines;
  return findTextChanges(pass, {});
}

}  // namespace

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
  for (const Pass& pass : pending_) {
    if (joined_.empty() && !joinsLines(*pass.newLines)) {
      read(*pass.newLines);
    } else {
      joined_.emplace_back(*pass.oldText, findChanges(pass.oldText, pass.newLines));
    }
  }
  pending_.clear();
}

void LineMap::read(const SourceFile& newLines) const {
  const auto& lines = newLines.getLines();
  std::vector<std::uint32_t> oldLines;
  oldLines.reserve(lines.size());
  // A pass that deletes the last line knows no line for the end of its text.
  const auto oldOf = [&](std::size_t line) {
    if (oldLines_.empty()) return static_cast<std::uint32_t>(line);
    return oldLines_[std::min(line, oldLines_.size() - 1)];
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
  if (place.line == 0) return place;
  LinePlace old = place;
  for (const PositionMap& pass : joined_ | std::views::reverse) old = pass.toOld(old);
  if (oldLines_.empty()) return old;
  const auto oldOf = [&](std::uint64_t line) {
    return std::uint64_t{oldLines_[std::min<std::size_t>(line, oldLines_.size()) - 1]} + 1;
  };
  old.line = oldOf(old.line);
  if (old.endLine != 0) old.endLine = std::max(old.line, oldOf(old.endLine));
  return old;
}

}  // namespace soca
