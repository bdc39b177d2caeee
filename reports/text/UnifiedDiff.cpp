#include "reports/text/UnifiedDiff.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "conversions/LineDiff.h"
#include "reports/text/FileNames.h"

namespace soca {
namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t contextLines = 3;

// `--- a/name`; a tab after a name with blanks marks its end.
std::string headerLine(std::string_view marker, std::string_view prefix, std::string_view name) {
  const std::string path = quoteForDiff(fmt::format("{}{}", prefix, name));
  const bool hasBlank = path.find(' ') != std::string::npos;
  return fmt::format("{} {}{}\n", marker, path, hasBlank ? "\t" : "");
}

// `12,3`: first line and number of lines; a count of 1 is omitted, and for a count of 0 the first
// line is the line before.
std::string rangeText(std::size_t start, std::size_t count) {
  if (count == 0) return fmt::format("{},0", start);
  if (count == 1) return fmt::format("{}", start + 1);
  return fmt::format("{},{}", start + 1, count);
}

void addLines(char marker, const Lines& lines, std::size_t start, std::size_t count,
              std::string& text) {
  for (std::size_t i = start; i < start + count; ++i) {
    text += marker;
    text += lines[i];
    if (!lines[i].ends_with('\n')) text += "\n\\ No newline at end of file\n";
  }
}

// Changes that share their context, from `first` through `last`.
struct Hunk {
  const LineChange* first;
  const LineChange* last;
};

std::vector<Hunk> makeHunks(const std::vector<LineChange>& changes) {
  std::vector<Hunk> hunks;
  for (const LineChange& change : changes) {
    if (!hunks.empty()) {
      const LineChange& last = *hunks.back().last;
      if (change.oldStart - (last.oldStart + last.oldCount) <= 2 * contextLines) {
        hunks.back().last = &change;
        continue;
      }
    }
    hunks.push_back({&change, &change});
  }
  return hunks;
}

void addHunk(const Hunk& hunk, const Lines& oldLines, const Lines& newLines, std::string& text) {
  const std::size_t before = std::min(contextLines, hunk.first->oldStart);
  const std::size_t oldStart = hunk.first->oldStart - before;
  const std::size_t newStart = hunk.first->newStart - before;
  const std::size_t changedEnd = hunk.last->oldStart + hunk.last->oldCount;
  const std::size_t behind = std::min(contextLines, oldLines.size() - changedEnd);
  const std::size_t newEnd = hunk.last->newStart + hunk.last->newCount + behind;
  text += fmt::format("@@ -{} +{} @@\n", rangeText(oldStart, changedEnd + behind - oldStart),
                      rangeText(newStart, newEnd - newStart));
  std::size_t next = oldStart;
  for (const LineChange* change = hunk.first; change <= hunk.last; ++change) {
    addLines(' ', oldLines, next, change->oldStart - next, text);
    addLines('-', oldLines, change->oldStart, change->oldCount, text);
    addLines('+', newLines, change->newStart, change->newCount, text);
    next = change->oldStart + change->oldCount;
  }
  addLines(' ', oldLines, changedEnd, behind, text);
}

std::string_view colorOf(std::string_view line, bool isHeader) {
  if (isHeader) return "\x1b[1m";
  switch (line.front()) {
    case '-':
      return "\x1b[31m";
    case '+':
      return "\x1b[32m";
    case '@':
      return "\x1b[36m";
    default:
      return {};
  }
}

}  // namespace

std::string unifiedDiff(std::string_view name, std::string_view oldBytes,
                        std::string_view newBytes) {
  const Lines oldLines = splitIntoLines(oldBytes);
  const Lines newLines = splitIntoLines(newBytes);
  const auto changes = diffLines(oldLines, newLines);
  if (changes.empty()) return {};
  std::string text = headerLine("---", "a/", name) + headerLine("+++", "b/", name);
  for (const Hunk& hunk : makeHunks(changes)) addHunk(hunk, oldLines, newLines, text);
  return text;
}

std::string colorDiff(std::string_view diff) {
  std::string text;
  std::size_t number = 0;
  for (const std::string_view line : splitIntoLines(diff)) {
    const std::string_view color = colorOf(line, number++ < 2);
    text += color;
    text += line.substr(0, line.size() - 1);
    if (!color.empty()) text += "\x1b[m";
    text += '\n';
  }
  return text;
}

}  // namespace soca
