#include "service/LineEnds.h"

#include <cstddef>
#include <cstdint>

namespace soca {
namespace {

bool isInside(const SourceFile& file, const SourcePosition& position) {
  const auto& lines = file.getLines();
  return position.line < lines.size() && position.column <= lines[position.line].text.size();
}

bool hasCarriageReturn(const SourceFile& file, std::uint64_t line) {
  const auto& lines = file.getLines();
  // The last line has no line end of its own.
  if (line > 0 && line + 1 >= lines.size()) line = lines.size() - 2;
  return line < lines.size() && lines[line].text.ends_with(u'\r');
}

void adaptLineEnds(const SourceFile& file, PlannedEdit& edit) {
  std::size_t end = edit.text.find(u'\n');
  if (end == fl::ustring::npos || !hasCarriageReturn(file, edit.extent.start.line)) return;
  for (; end != fl::ustring::npos; end = edit.text.find(u'\n', end + 1)) {
    if (end == 0 || edit.text[end - 1] != u'\r') edit.text.insert(end++, 1, u'\r');
  }
}

bool losesCarriageReturn(const SourceFile& file, const PlannedEdit& edit) {
  const fl::ustring_view first = file.getLines()[edit.extent.start.line].text;
  if (!first.ends_with(u'\r')) return false;
  const auto replaced = findReplaced(file, edit);
  if (!replaced || replaced->start.column == first.size()) return false;
  // A line of which nothing is left is removed.
  if (edit.text.empty() && SourceFile::isEmptied(first.substr(0, replaced->start.column))) {
    return false;
  }
  if (replaced->end.line > replaced->start.line) return endsFirstLine(file, *replaced);
  return replaced->end.column == first.size();
}

}  // namespace

std::optional<Extent> findReplaced(const SourceFile& file, const PlannedEdit& edit) {
  const auto& [start, end] = edit.extent;
  if (!isInside(file, start) || !isInside(file, end)) return std::nullopt;
  if (file.findMissingDelimiter(edit.delimiterFlags, edit.extent)) return std::nullopt;
  return Extent{start, file.endWithDelimiters(end, edit.delimiterFlags)};
}

bool endsFirstLine(const SourceFile& file, const Extent& replaced) {
  const auto& [start, end] = replaced;
  if (end.line == start.line) return false;
  return end.line - start.line > 1 ||
         SourceFile::isEmptied(file.getLines()[end.line].text.substr(end.column));
}

void adaptInsertedLineEnds(const SourceFile& file, std::vector<PlannedAction>& actions) {
  for (PlannedAction& action : actions) {
    for (PlannedEdit& edit : action.edits) adaptLineEnds(file, edit);
  }
}

void keepCarriageReturns(const SourceFile& file, std::vector<PlannedAction>& actions) {
  for (PlannedAction& action : actions) {
    for (std::size_t i = 0; i < action.edits.size(); ++i) {
      PlannedEdit& edit = action.edits[i];
      if (!losesCarriageReturn(file, edit)) continue;
      if (!edit.text.empty()) {
        edit.text += u'\r';
        continue;
      }
      // What deletes a member is known by its empty text.
      const SourcePosition start = edit.extent.start;
      action.edits.insert(action.edits.begin() + static_cast<std::ptrdiff_t>(++i),
                          {{start, start}, u"\r", 0});
    }
  }
}

}  // namespace soca
