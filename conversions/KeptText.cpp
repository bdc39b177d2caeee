#include "conversions/KeptText.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "model/SourceFile.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

constexpr fl::ustring_view blanks = u"\t\n\v\f\r ";
constexpr fl::ustring_view continuation = u"...";

// The lines of a text without their line ends; after a final line end there is an empty last line.
std::vector<fl::ustring_view> splitLines(fl::ustring_view text) {
  constexpr std::size_t usualLineLength = 32;
  std::vector<fl::ustring_view> lines;
  lines.reserve(text.size() / usualLineLength + 1);
  std::size_t start = 0;
  for (std::size_t end = fl::findLineEnd(text, 0); end != fl::ustring_view::npos;
       end = fl::findLineEnd(text, start)) {
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  lines.push_back(text.substr(start));
  return lines;
}

// Whether the line is deleted if it was edited.
bool isDropped(fl::ustring_view line) {
  const std::size_t first = line.find_first_not_of(blanks);
  return first == fl::ustring_view::npos || line.substr(first).starts_with(continuation);
}

// One edit and its place in the old text.
struct PlacedEdit {
  const PlannedEdit* edit = nullptr;
  // The position after the delimiters that the edit also removes.
  SourcePosition end;
  // Of two insertions at one place the later one is first in the text.
  std::size_t number = 0;

  const SourcePosition& start() const { return edit->extent.start; }
};

std::size_t countEdits(const std::vector<PlannedAction>& actions) {
  std::size_t count = 0;
  for (const PlannedAction& action : actions) count += action.edits.size();
  return count;
}

class Placer {
 public:
  explicit Placer(const std::vector<fl::ustring_view>& lines) : lines_(lines) {}

  std::vector<PlacedEdit> place(const std::vector<PlannedAction>& actions) const {
    std::vector<PlacedEdit> edits;
    edits.reserve(countEdits(actions));
    for (const PlannedAction& action : actions) {
      for (const PlannedEdit& edit : action.edits) edits.push_back(place(edit, edits.size()));
    }
    std::ranges::sort(edits, [](const PlacedEdit& left, const PlacedEdit& right) {
      if (left.start() != right.start()) return left.start() < right.start();
      return left.number > right.number;
    });
    return edits;
  }

 private:
  PlacedEdit place(const PlannedEdit& edit, std::size_t number) const {
    SourcePosition end = edit.extent.end;
    if ((edit.delimiterFlags & SourceFile::ConsumeListDelimiter) != 0) {
      end = behindDelimiter(end, u";,");
    }
    if ((edit.delimiterFlags & SourceFile::ConsumeAmpersand) != 0) end = behindDelimiter(end, u"&");
    return {&edit, end, number};
  }

  // The end of a search for a delimiter: after it, before a comment, or at a line's end.
  SourcePosition behindDelimiter(SourcePosition position, fl::ustring_view delimiters) const {
    while (position.line < lines_.size()) {
      const fl::ustring_view line = lines_[position.line];
      const std::size_t column = line.find_first_not_of(blanks, position.column);
      if (column == fl::ustring_view::npos) return {position.line, line.size()};
      if (delimiters.find(line[column]) != fl::ustring_view::npos) {
        return {position.line, column + 1};
      }
      if (line[column] != u'.') return {position.line, column};
      position = {position.line + 1, 0};
    }
    return {lines_.size() - 1, lines_.back().size()};
  }

  const std::vector<fl::ustring_view>& lines_;
};

bool isInside(const SourcePosition& position, const std::vector<fl::ustring_view>& lines) {
  return position.line < lines.size() && position.column <= lines[position.line].size();
}

// The first edit whose place is not valid; empty if there is none.
std::optional<LostText> findMisplacedEdit(const std::vector<PlacedEdit>& edits,
                                          const std::vector<fl::ustring_view>& lines) {
  for (std::size_t i = 0; i < edits.size(); ++i) {
    const PlacedEdit& edit = edits[i];
    const SourcePosition& start = edit.start();
    if (!isInside(start, lines) || !isInside(edit.end, lines) || edit.end < start) {
      return LostText{fmt::format("an edit of line {} lies outside the text", start.line + 1),
                      start.line};
    }
    if (i > 0 && start < edits[i - 1].end) {
      return LostText{fmt::format("two edits overlap on line {}", start.line + 1), start.line};
    }
  }
  return std::nullopt;
}

// The new text of some lines of the old text: one edited line, or a run of unedited lines.
class Stretch {
 public:
  // Whether an edit removed the line end, so that the next line may follow without one.
  bool mayJoinNext = false;

  // An edited line is a stretch of its own.
  bool isTouched() const { return isTouched_; }
  bool isDropped() const { return isTouched_ && soca::isDropped(built_); }
  fl::ustring_view text() const { return isTouched_ ? fl::ustring_view(built_) : kept_; }
  std::size_t lineCount() const { return lineCount_; }

  // Appends text of the old line, or of several, that no edit changes.
  void keep(fl::ustring_view text, std::size_t lineCount = 1) {
    if (isTouched_) {
      built_ += text;
    } else {
      kept_ = text;
      lineCount_ = lineCount;
    }
  }

  void touch(fl::ustring_view inserted) {
    if (!isTouched_) built_ = kept_;
    isTouched_ = true;
    built_ += inserted;
  }

 private:
  bool isTouched_ = false;
  fl::ustring_view kept_;
  std::size_t lineCount_ = 1;
  fl::ustring built_;
};

// Consumes the new text from its start. `take` returns false for another text.
class Matcher {
 public:
  explicit Matcher(fl::ustring_view text) : rest_(text) {}

  bool take(fl::ustring_view text) {
    if (!fl::areEqualTexts(rest_.substr(0, text.size()), text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  // The number of whole lines of `text` that are next.
  std::size_t countLines(fl::ustring_view text) const {
    const auto [own, other] = std::ranges::mismatch(text, rest_);
    return static_cast<std::size_t>(std::count(text.begin(), own, u'\n'));
  }
  bool isAtEnd() const { return rest_.empty(); }

 private:
  fl::ustring_view rest_;
};

// Matches the stretches of the edited text, in order, against the new text.
class StretchMatcher {
 public:
  explicit StretchMatcher(fl::ustring_view newText) : matcher_(newText) {}

  // Matches a stretch that is followed by another one.
  void take(const Stretch& stretch) {
    if (mismatch_ || !takeText(stretch) || stretch.isDropped()) return;
    if (matcher_.take(u"\n")) return;
    if (stretch.mayJoinNext) {
      joined_ = line_;
    } else {
      mismatch_ = line_;
    }
  }

  // Matches the last stretch. Returns the number of the first line, counted from 1, that differs in
  // the new text.
  std::optional<std::size_t> takeLast(const Stretch& stretch) {
    if (!mismatch_ && takeText(stretch) && !matcher_.isAtEnd()) mismatch_ = line_;
    return mismatch_;
  }

 private:
  bool takeText(const Stretch& stretch) {
    const std::size_t firstLine = line_ + 1;
    line_ += stretch.lineCount();
    const auto joined = std::exchange(joined_, std::nullopt);
    if (stretch.isDropped()) {
      mismatch_ = joined;
    } else if (!matcher_.take(stretch.text())) {
      mismatch_ = stretch.isTouched() ? line_ : firstLine + matcher_.countLines(stretch.text());
    }
    return !mismatch_;
  }

  Matcher matcher_;
  std::size_t line_ = 0;
  // The line that the next stretch must continue; that stretch must not be deleted.
  std::optional<std::size_t> joined_;
  std::optional<std::size_t> mismatch_;
};

// Builds the new text from the old one and its edits, each edited line as one piece and the lines
// between them as one piece, and compares it piece by piece.
class Rebuilder {
 public:
  Rebuilder(const std::vector<fl::ustring_view>& lines, const std::vector<PlacedEdit>& edits,
            fl::ustring_view newText)
      : lines_(lines), edits_(edits), matcher_(newText) {}

  // The number of the first line, counted from 1, that differs in the new text.
  std::optional<std::size_t> findMismatch() {
    for (const PlacedEdit& edit : edits_) apply(edit);
    copyUntil({lines_.size() - 1, lines_.back().size()});
    current_.touch({});
    return matcher_.takeLast(current_);
  }

 private:
  void apply(const PlacedEdit& edit) {
    copyUntil(edit.start());
    current_.touch(edit.edit->text);
    position_ = edit.end;
    if (edit.end.line == edit.start().line) return;
    current_.mayJoinNext = true;
    beginNext();
    current_.touch({});
  }

  void beginNext() {
    matcher_.take(current_);
    current_ = Stretch();
  }

  // Copies the old text from the end of the last edit.
  void copyUntil(const SourcePosition& end) {
    if (position_.line < end.line && current_.isTouched()) endLine();
    if (position_.line < end.line) copyLines(end.line);
    current_.keep(lines_[end.line].substr(position_.column, end.column - position_.column));
    position_ = end;
  }

  void endLine() {
    current_.keep(lines_[position_.line].substr(position_.column));
    beginNext();
    position_ = {position_.line + 1, 0};
  }

  // Copies the lines from the current one up to `next`, which is not included.
  void copyLines(std::uint64_t next) {
    const char16_t* const start = lines_[position_.line].data();
    const fl::ustring_view& last = lines_[next - 1];
    current_.keep({start, last.data() + last.size()}, next - position_.line);
    beginNext();
    position_ = {next, 0};
  }

  const std::vector<fl::ustring_view>& lines_;
  const std::vector<PlacedEdit>& edits_;
  SourcePosition position_;
  // The stretch that is being built; all before it have been compared.
  Stretch current_;
  StretchMatcher matcher_;
};

}  // namespace

std::optional<LostText> findLostText(fl::ustring_view oldText, fl::ustring_view newText,
                                     const std::vector<PlannedAction>& actions) {
  const auto lines = splitLines(oldText);
  const auto edits = Placer(lines).place(actions);
  if (auto misplaced = findMisplacedEdit(edits, lines)) return misplaced;
  const auto mismatch = Rebuilder(lines, edits, newText).findMismatch();
  if (!mismatch) return std::nullopt;
  return LostText{fmt::format("text outside the edits would change, near line {}", *mismatch),
                  *mismatch - 1};
}

}  // namespace soca
