#include "model/SourceFile.h"

#include <algorithm>
#include <boost/algorithm/string/find.hpp>
#include <boost/range/iterator_range.hpp>
#include <cstddef>
#include <utility>

#include "platform/failure/Terminate.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using Line = SourceFile::Line;

constexpr fl::ustring_view blanks = u"\t\n\v\f\r ";
constexpr fl::ustring_view continuation = u"...";
constexpr fl::ustring_view listDelimiters = u";,";
constexpr fl::ustring_view ampersand = u"&";

bool has(const Line& line, std::uint64_t flag) { return (line.flags & flag) != 0; }

bool isBlank(const Line& line) { return line.text.find_first_not_of(blanks) == fl::ustring::npos; }

void markDeleted(Line& line) {
  line.text = {};
  line.flags &= ~(SourceFile::LineNoNewline | SourceFile::LineModified);
  line.flags |= SourceFile::LineDeleted;
}

// Finds the line ends for Boost's algorithms.
struct LineEndFinder {
  template <class Iterator>
  boost::iterator_range<Iterator> operator()(Iterator begin, Iterator end) const {
    const std::size_t place = fl::findLineEnd(fl::ustring_view(begin, end), 0);
    if (place == fl::ustring_view::npos) return {end, end};
    begin += static_cast<std::ptrdiff_t>(place);
    return {begin, begin + 1};
  }
};

std::vector<Line> splitTextIntoLines(fl::ustring_view text) {
  constexpr std::size_t usualLineLength = 32;
  std::vector<Line> lines;
  lines.reserve(text.size() / usualLineLength + 1);
  boost::iterator_range<const char16_t*> rest(text.data(), text.data() + text.size());
  while (true) {
    // A split iterator would call the finder by a pointer and copy it.
    const auto end = boost::algorithm::find(rest, LineEndFinder());
    lines.push_back({fl::ustring_view(rest.begin(), end.begin())});
    if (end.empty()) break;
    rest = {end.end(), rest.end()};
  }
  // The last line is treated as edited, so that an empty one after a final line end is removed
  // again.
  lines.back().flags = SourceFile::LineNoNewline | SourceFile::LineModified;
  return lines;
}

}  // namespace

// The result of a search for a delimiter: the position after it, the position where the search
// ended without one, or that of a character that is not allowed there.
struct SourceFile::DelimiterSearch {
  SourcePosition position;
  bool isMissing = false;
};

SourceFile::SourceFile(fl::ustring_view text) : lines_(splitTextIntoLines(text)) {}

SourceFile::SourceFile(std::unique_ptr<const fl::ustring> text)
    : ownText_(std::move(text)), lines_(splitTextIntoLines(*ownText_)) {}

fl::ustring SourceFile::getText() const {
  std::size_t length = 0;
  for (const Line& line : lines_) length += line.text.size() + 1;
  fl::ustring text;
  text.reserve(length);
  for (auto line = lines_.begin(); line != lines_.end(); ++line) {
    if (line->flags == 0) {
      // Consecutive untouched lines are contiguous in the old text, including their line ends.
      const auto first = line;
      while ((line + 1)->flags == 0) ++line;
      text.append(first->text.data(), line->text.data() + line->text.size() + 1);
    } else if (!has(*line, LineDeleted)) {
      text += line->text;
      if (!has(*line, LineNoNewline)) text += u'\n';
    }
  }
  return text;
}

std::uint64_t SourceFile::lineBehindContinuation(std::uint64_t line) const {
  ++line;
  while (line + 1 < lines_.size() && has(lines_[line], LineDeleted)) ++line;
  return line;
}

SourceFile::DelimiterSearch SourceFile::searchDelimiter(SourcePosition position,
                                                        fl::ustring_view delimiters) const {
  while (true) {
    const fl::ustring_view text = lines_[position.line].text;
    const std::size_t column = text.find_first_not_of(blanks, position.column);
    if (column == fl::ustring::npos) return {{position.line, text.size()}};
    const char16_t unit = text[column];
    if (unit == u'%') return {{position.line, column}};
    if (delimiters.find(unit) != fl::ustring_view::npos) return {{position.line, column + 1}};
    if (unit != u'.') return {{position.line, column}, true};
    // A continuation on the last line is followed by nothing.
    if (position.line + 1 == lines_.size()) return {{position.line, text.size()}};
    position = {lineBehindContinuation(position.line), 0};
  }
}

SourcePosition SourceFile::movePastDelimiter(SourcePosition position,
                                             const fl::ustring& delimiters) const {
  const DelimiterSearch search = searchDelimiter(position, delimiters);
  if (search.isMissing) {
    foundation::core::diag::terminate(
        "Could not find delimiter", "SourceFile", 205,
        "soca::SourcePosition soca::SourceFile::movePastDelimiter(soca::SourcePosition, const "
        "fl::ustring&) const");
  }
  return search.position;
}

SourcePosition SourceFile::endWithDelimiters(SourcePosition end, std::uint64_t options) const {
  if ((options & ConsumeListDelimiter) != 0) {
    end = movePastDelimiter(end, fl::ustring(listDelimiters));
  }
  if ((options & ConsumeAmpersand) != 0) end = movePastDelimiter(end, fl::ustring(ampersand));
  return end;
}

std::optional<SourcePosition> SourceFile::findMissingDelimiter(std::uint64_t options,
                                                               const Extent& extent) const {
  DelimiterSearch search = {extent.end};
  if ((options & ConsumeListDelimiter) != 0) {
    search = searchDelimiter(search.position, listDelimiters);
  }
  if ((options & ConsumeAmpersand) != 0 && !search.isMissing) {
    search = searchDelimiter(search.position, ampersand);
  }
  if (!search.isMissing) return std::nullopt;
  return search.position;
}

void SourceFile::replace(const fl::ustring& text, std::uint64_t options, Extent extent) {
  extent.end = endWithDelimiters(extent.end, options);
  Line& first = lines_[extent.start.line];
  const std::uint64_t length = first.text.size();
  std::uint64_t endColumn = extent.end.column;
  if (extent.end.line != extent.start.line) {
    cutFollowingLines(extent);
    endColumn = length;
  }
  const std::uint64_t count =
      std::min(endColumn - extent.start.column, length - extent.start.column);
  replaceInLine(first, extent.start.column, count, text);
  first.flags |= LineModified;
  if (has(first, LineDeleted)) closeGapBehind(extent);
}

void SourceFile::cutFollowingLines(const Extent& extent) {
  // The rest of the last line follows the first in the text, as a record of its own.
  lines_[extent.start.line].flags |= LineNoNewline | LineModified;
  for (std::uint64_t line = extent.start.line + 1; line < extent.end.line; ++line) {
    markDeleted(lines_[line]);
  }
  Line& last = lines_[extent.end.line];
  // The all-ones column removes the whole line.
  last.text.remove_prefix(std::min<std::uint64_t>(extent.end.column, last.text.size()));
  last.flags |= LineModified;
}

void SourceFile::replaceInLine(Line& line, std::uint64_t column, std::uint64_t count,
                               const fl::ustring& text) {
  const fl::ustring_view rest = line.text.substr(column);
  fl::ustring edited;
  edited.reserve(line.text.size() + text.size());
  edited.append(line.text.substr(0, column)).append(text);
  edited.append(rest.substr(std::min<std::uint64_t>(count, rest.size())));
  if (line.edited == nullptr) line.edited = &editedTexts_.emplace_back();
  *line.edited = std::move(edited);
  line.text = *line.edited;
}

// If the first of the edited lines was deleted before, the blank lines before and after them become
// adjacent: keeps one of them.
void SourceFile::closeGapBehind(const Extent& extent) {
  if (extent.start.line == 0 || extent.end.line + 1 == lines_.size()) return;
  const Line& before = lines_[extent.start.line - 1];
  Line& after = lines_[extent.end.line + 1];
  if (has(before, LineDeleted) || has(after, LineDeleted)) return;
  if (isBlank(before) && isBlank(after)) markDeleted(after);
}

bool SourceFile::isEmptied(fl::ustring_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  return first == fl::ustring::npos || text.substr(first).starts_with(continuation);
}

void SourceFile::removeEmptiedLines() {
  for (Line& line : lines_) {
    if (!has(line, LineModified)) continue;
    if (isEmptied(line.text)) markDeleted(line);
  }
  // A line whose next line was deleted gets its line end back.
  for (std::size_t i = 0; i + 1 < lines_.size(); ++i) {
    if (has(lines_[i + 1], LineDeleted)) lines_[i].flags &= ~LineNoNewline;
  }
}

}  // namespace soca
