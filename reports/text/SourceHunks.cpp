#include "reports/text/SourceHunks.h"

#include <algorithm>

#include "platform/text/Conversions.h"

namespace soca {
namespace {

constexpr std::size_t linesAroundChange = 3;
constexpr std::size_t linesAroundPlace = 1;

// Lines of the text, counted from 0; `last` is in the stretch.
struct Stretch {
  std::size_t first = 0;
  std::size_t last = 0;
};

class HunkMaker {
 public:
  HunkMaker(fl::ustring_view text, const TextChanges& changes) : text_(text), changes_(changes) {
    for (auto end = text.find(u'\n'); end != text.npos; end = text.find(u'\n', end + 1)) {
      starts_.push_back(end + 1);
    }
  }

  std::vector<SourceHunk> make(const std::vector<std::uint64_t>& lines) const {
    std::vector<SourceHunk> hunks;
    auto change = changes_.begin();
    for (const Stretch& stretch : joinedStretches(lines)) {
      hunks.push_back(makeHunk(stretch, change));
    }
    return hunks;
  }

 private:
  std::size_t lineOf(std::size_t offset) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(starts_, offset) - starts_.begin()) -
           1;
  }

  // The end of a line without its line end.
  std::size_t endOf(std::size_t line) const {
    return line + 1 < starts_.size() ? starts_[line + 1] - 1 : text_.size();
  }

  void addAround(std::size_t first, std::size_t last, std::size_t around,
                 std::vector<Stretch>& stretches) const {
    stretches.push_back(
        {first - std::min(first, around), std::min(last + around, starts_.size() - 1)});
  }

  std::vector<Stretch> joinedStretches(const std::vector<std::uint64_t>& lines) const {
    std::vector<Stretch> stretches;
    for (const TextChange& change : changes_) {
      addAround(lineOf(change.offset), lineOf(change.offset + change.length), linesAroundChange,
                stretches);
    }
    for (const std::uint64_t line : lines) {
      if (line > 0 && line <= starts_.size()) {
        addAround(line - 1, line - 1, linesAroundPlace, stretches);
      }
    }
    std::ranges::sort(stretches, {}, &Stretch::first);
    std::vector<Stretch> joined;
    for (const Stretch& each : stretches) {
      if (joined.empty() || each.first > joined.back().last + 1) {
        joined.push_back(each);
      } else {
        joined.back().last = std::max(joined.back().last, each.last);
      }
    }
    return joined;
  }

  SourceHunk makeHunk(const Stretch& stretch, TextChanges::const_iterator& change) const {
    const std::size_t start = starts_[stretch.first];
    const std::size_t end = endOf(stretch.last);
    SourceHunk hunk{stretch.first + 1, fl::i18n::to_string(text_.substr(start, end - start)), {}};
    std::size_t next = start;
    for (; change != changes_.end() && change->offset <= end; ++change) {
      hunk.edits.push_back({change->offset - next, change->length,
                            fl::i18n::to_string(change->text), change->conversions});
      next = change->offset + change->length;
    }
    return hunk;
  }

  fl::ustring_view text_;
  const TextChanges& changes_;
  // The offsets at which lines begin.
  std::vector<std::size_t> starts_ = {0};
};

}  // namespace

std::vector<SourceHunk> makeHunks(fl::ustring_view oldText, const TextChanges& changes,
                                  const std::vector<std::uint64_t>& lines) {
  return HunkMaker(oldText, changes).make(lines);
}

}  // namespace soca
