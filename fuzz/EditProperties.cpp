#include "fuzz/EditProperties.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

#include "conversions/KeptText.h"
#include "fuzz/Violation.h"
#include "model/SourceFile.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {
namespace {

constexpr fl::ustring_view blanks = u"\t\n\v\f\r ";
constexpr std::array<fl::ustring_view, 8> texts = {
    u"", u"x", u" (1, 1) logical", u"    flag = ~flag;\n", u"...", u" ", u"\u00E9\U0001D49C", u""};

// The edit on this text: inside of it, and with its end not before its start.
PlannedEdit placeEdit(const SourceFile& file, const RawEdit& raw) {
  const auto lengthOf = [&](std::uint64_t line) { return file.getLines()[line].text.size(); };
  const std::uint64_t line = raw.line % file.getNumberOfLines();
  const std::uint64_t column = raw.column % (lengthOf(line) + 1);
  const std::uint64_t endLine = std::min(line + raw.lines % 4, file.getNumberOfLines() - 1);
  const std::uint64_t first = endLine == line ? column : 0;
  const std::uint64_t endColumn = first + raw.columns % (lengthOf(endLine) - first + 1);
  return {{{line, column}, {endLine, endColumn}},
          fl::ustring(texts[raw.text % texts.size()]),
          raw.options & (SourceFile::ConsumeListDelimiter | SourceFile::ConsumeAmpersand)};
}

std::vector<PlannedEdit> placeEdits(const SourceFile& file, const std::vector<RawEdit>& raw) {
  std::vector<PlannedEdit> edits;
  for (const RawEdit& each : raw) edits.push_back(placeEdit(file, each));
  return edits;
}

void replace(SourceFile& file, const PlannedEdit& edit) {
  file.replace(edit.text, edit.delimiterFlags, edit.extent);
}

fl::ustring finish(SourceFile& file) {
  file.removeEmptiedLines();
  return file.getText();
}

// --- no edit ---

void checkUnedited(const fl::ustring& text) {
  SourceFile file(text);
  const std::size_t lastLine = text.rfind(u'\n') + 1;
  const std::size_t first = text.find_first_not_of(blanks, lastLine);
  const bool isDropped = first == fl::ustring::npos || text.compare(first, 3, u"...") == 0;
  require(finish(file) == (isDropped ? text.substr(0, lastLine) : text),
          "the text changes without an edit");
}

// --- any edits ---

void checkAnyEdits(const fl::ustring& text, const std::vector<PlannedEdit>& edits) {
  SourceFile file(text);
  const std::uint64_t count = file.getNumberOfLines();
  for (const PlannedEdit& edit : edits) {
    if (file.findMissingDelimiter(edit.delimiterFlags, edit.extent)) continue;
    const SourcePosition& start = edit.extent.start;
    const bool isAfterLine = start.column > file.getLines()[start.line].text.size();
    bool failed = false;
    try {
      replace(file, edit);
    } catch (const std::out_of_range&) {
      failed = true;
    }
    require(failed == isAfterLine, "an edit of line {} fails, or does not", start.line + 1);
    require(file.getNumberOfLines() == count, "the number of lines changes");
  }
  finish(file);
}

// --- edits on different lines ---

// The end of the edit with its delimiters; empty if one is missing.
std::optional<SourcePosition> endOf(const SourceFile& file, const PlannedEdit& edit) {
  if (file.findMissingDelimiter(edit.delimiterFlags, edit.extent)) return std::nullopt;
  SourcePosition end = edit.extent.end;
  if ((edit.delimiterFlags & SourceFile::ConsumeListDelimiter) != 0) {
    end = file.movePastDelimiter(end, u";,");
  }
  if ((edit.delimiterFlags & SourceFile::ConsumeAmpersand) != 0) {
    end = file.movePastDelimiter(end, u"&");
  }
  return end;
}

// The edits that begin on a line below the previous one.
std::vector<PlannedEdit> takeApart(const SourceFile& file, std::vector<PlannedEdit> edits) {
  std::ranges::sort(edits, {}, [](const PlannedEdit& edit) { return edit.extent.start; });
  std::vector<PlannedEdit> apart;
  std::uint64_t nextLine = 0;
  for (PlannedEdit& edit : edits) {
    const auto end = endOf(file, edit);
    if (!end || edit.extent.start.line < nextLine) continue;
    nextLine = end->line + 1;
    apart.push_back(std::move(edit));
  }
  return apart;
}

void checkEditsApart(const fl::ustring& text, const std::vector<PlannedEdit>& all) {
  SourceFile down(text);
  SourceFile up(text);
  const std::vector<PlannedEdit> edits = takeApart(down, all);
  if (edits.empty()) return;
  for (const PlannedEdit& edit : edits) replace(down, edit);
  for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) replace(up, *edit);
  const fl::ustring edited = finish(down);
  require(finish(up) == edited, "the order of edits matters");
  std::vector<PlannedAction> actions;
  for (const PlannedEdit& edit : edits) {
    actions.push_back({RuleFamilyType::attributes, false, edit.extent, {edit}});
  }
  const auto lost = findLostText(text, edited, actions);
  require(!lost, "{}", lost ? lost->text : "");
}

}  // namespace

void checkEdits(const fl::ustring& text, const std::vector<RawEdit>& raw) {
  checkUnedited(text);
  const std::vector<PlannedEdit> edits = placeEdits(SourceFile(text), raw);
  checkAnyEdits(text, edits);
  checkEditsApart(text, edits);
}

}  // namespace soca::fuzz
