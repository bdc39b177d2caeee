#include "conversions/LineDiff.h"

#include <algorithm>
#include <cstdint>
#include <ranges>
#include <unordered_map>
#include <utility>

#include "conversions/ShortestScript.h"

namespace soca {
namespace {

// Lines have the same id if they are equal.
using LineIds = std::vector<std::uint32_t>;

// The largest gap between anchors, in lines of both texts together, for which the shortest script
// is computed.
constexpr std::size_t largestGap = 400;
// How often gaps are divided at lines that are unique only inside them.
constexpr unsigned deepestSearch = 8;

// The parts of both texts between two places: [oldStart, oldEnd) and [newStart, newEnd).
struct Range {
  std::size_t oldStart, oldEnd, newStart, newEnd;
  unsigned depth = 0;

  std::size_t oldCount() const { return oldEnd - oldStart; }
  std::size_t newCount() const { return newEnd - newStart; }
};

// An equal line of both texts.
struct Match {
  std::size_t oldLine, newLine;
};

class Differ {
 public:
  Differ(const std::vector<std::string_view>& oldLines,
         const std::vector<std::string_view>& newLines) {
    ids_.reserve(oldLines.size());
    for (const auto line : oldLines) old_.push_back(idOf(line));
    for (const auto line : newLines) new_.push_back(idOf(line));
    occurrences_.resize(ids_.size());
    ids_ = {};
  }

  std::vector<LineChange> run() {
    // The ranges to be compared; the topmost is last.
    std::vector<Range> pending = {{0, old_.size(), 0, new_.size()}};
    while (!pending.empty()) {
      Range range = pending.back();
      pending.pop_back();
      trim(range);
      if (range.oldCount() == 0 || range.newCount() == 0) {
        addChange(range);
        continue;
      }
      const auto anchors = findAnchors(range);
      if (anchors.empty()) {
        diffGap(range);
      } else {
        addGaps(range, anchors, pending);
      }
    }
    return std::move(changes_);
  }

 private:
  std::uint32_t idOf(std::string_view line) {
    return ids_.try_emplace(line, static_cast<std::uint32_t>(ids_.size())).first->second;
  }

  // Removes the equal lines at both ends.
  void trim(Range& range) const {
    while (range.oldCount() > 0 && range.newCount() > 0 &&
           old_[range.oldStart] == new_[range.newStart]) {
      ++range.oldStart, ++range.newStart;
    }
    while (range.oldCount() > 0 && range.newCount() > 0 &&
           old_[range.oldEnd - 1] == new_[range.newEnd - 1]) {
      --range.oldEnd, --range.newEnd;
    }
  }

  void addChange(const Range& range) {
    if (range.oldCount() == 0 && range.newCount() == 0) return;
    if (!changes_.empty()) {
      LineChange& last = changes_.back();
      if (last.oldStart + last.oldCount == range.oldStart &&
          last.newStart + last.newCount == range.newStart) {
        last.oldCount += range.oldCount();
        last.newCount += range.newCount();
        return;
      }
    }
    changes_.push_back({range.oldStart, range.oldCount(), range.newStart, range.newCount()});
  }

  // The longest increasing sequence of lines that occur once on each side of the range.
  std::vector<Match> findAnchors(const Range& range) {
    if (range.depth >= deepestSearch) return {};
    return longestRise(uniqueMatches(range));
  }

  // In the order of the old text.
  std::vector<Match> uniqueMatches(const Range& range) {
    for (std::size_t i = range.oldStart; i < range.oldEnd; ++i) occurrences_[old_[i]] = {};
    for (std::size_t i = range.newStart; i < range.newEnd; ++i) occurrences_[new_[i]] = {};
    for (std::size_t i = range.oldStart; i < range.oldEnd; ++i) ++occurrences_[old_[i]].inOld;
    for (std::size_t i = range.newStart; i < range.newEnd; ++i) {
      ++occurrences_[new_[i]].inNew;
      occurrences_[new_[i]].newLine = i;
    }
    std::vector<Match> matches;
    for (std::size_t i = range.oldStart; i < range.oldEnd; ++i) {
      const Occurrences& line = occurrences_[old_[i]];
      if (line.inOld == 1 && line.inNew == 1) matches.push_back({i, line.newLine});
    }
    return matches;
  }

  static std::vector<Match> longestRise(const std::vector<Match>& matches) {
    // For each length of an increasing sequence the match with the lowest end, and for each match
    // its predecessor.
    std::vector<std::size_t> ends;
    std::vector<std::size_t> previous(matches.size());
    for (std::size_t i = 0; i < matches.size(); ++i) {
      const auto place = std::ranges::lower_bound(
          ends, matches[i].newLine, {}, [&](std::size_t end) { return matches[end].newLine; });
      previous[i] = place == ends.begin() ? i : *(place - 1);
      if (place == ends.end()) {
        ends.push_back(i);
      } else {
        *place = i;
      }
    }
    std::vector<Match> rise(ends.size());
    std::size_t current = ends.empty() ? 0 : ends.back();
    for (std::size_t i = ends.size(); i-- > 0; current = previous[current]) {
      rise[i] = matches[current];
    }
    return rise;
  }

  static void addGaps(const Range& range, const std::vector<Match>& anchors,
                      std::vector<Range>& pending) {
    std::size_t oldEnd = range.oldEnd;
    std::size_t newEnd = range.newEnd;
    for (const Match& anchor : std::views::reverse(anchors)) {
      pending.push_back({anchor.oldLine + 1, oldEnd, anchor.newLine + 1, newEnd, range.depth + 1});
      oldEnd = anchor.oldLine;
      newEnd = anchor.newLine;
    }
    pending.push_back({range.oldStart, oldEnd, range.newStart, newEnd, range.depth + 1});
  }

  void diffGap(const Range& range) {
    if (range.oldCount() + range.newCount() > largestGap) {
      addChange(range);
      return;
    }
    const auto part = [](const LineIds& ids, std::size_t start, std::size_t end) {
      return LineIds(ids.begin() + static_cast<std::ptrdiff_t>(start),
                     ids.begin() + static_cast<std::ptrdiff_t>(end));
    };
    Range next{range.oldStart, range.oldStart, range.newStart, range.newStart};
    for (const StepType step : shortestScript(part(old_, range.oldStart, range.oldEnd),
                                              part(new_, range.newStart, range.newEnd))) {
      if (step == StepType::deleteLine) ++next.oldEnd;
      if (step == StepType::insertLine) ++next.newEnd;
      if (step != StepType::keepLine) continue;
      addChange(next);
      next = {next.oldEnd + 1, next.oldEnd + 1, next.newEnd + 1, next.newEnd + 1};
    }
    addChange(next);
  }

  struct Occurrences {
    std::uint32_t inOld = 0;
    std::uint32_t inNew = 0;
    std::size_t newLine = 0;
  };

  std::unordered_map<std::string_view, std::uint32_t> ids_;
  LineIds old_;
  LineIds new_;
  // By line id; valid only for the ids of the current range.
  std::vector<Occurrences> occurrences_;
  std::vector<LineChange> changes_;
};

}  // namespace

std::vector<std::string_view> splitIntoLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

std::vector<LineChange> diffLines(const std::vector<std::string_view>& oldLines,
                                  const std::vector<std::string_view>& newLines) {
  return Differ(oldLines, newLines).run();
}

}  // namespace soca
