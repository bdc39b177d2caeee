#include "conversions/FileEdits.h"

#include <algorithm>
#include <utility>

#include "conversions/LineDiff.h"
#include "model/SourceFile.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

// The offsets of the lines of a text, and its size.
std::vector<std::size_t> findLineStarts(fl::ustring_view text) {
  std::vector<std::size_t> starts = {0};
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\n') starts.push_back(i + 1);
  }
  starts.push_back(text.size());
  return starts;
}

bool isLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit >= 0x80;
}

bool isPartOfWord(char16_t unit) {
  return isLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'_';
}

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

// The size of the first token of a text, which must not be empty.
std::size_t sizeOfToken(fl::ustring_view text) {
  const auto sizeOfRun = [&](bool (*isInRun)(char16_t)) {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isInRun) - text.begin());
  };
  if (isBlank(text.front())) return sizeOfRun(isBlank);
  return isPartOfWord(text.front()) ? sizeOfRun(isPartOfWord) : 1;
}

using Tokens = std::vector<fl::ustring_view>;

// The part of a text that `count` of its tokens take, from the one with the index `start`.
fl::ustring_view partOf(fl::ustring_view text, const Tokens& tokens, std::size_t start,
                        std::size_t count) {
  const auto offsetOf = [&](std::size_t token) {
    return token == tokens.size() ? text.size()
                                  : static_cast<std::size_t>(tokens[token].data() - text.data());
  };
  return text.substr(offsetOf(start), offsetOf(start + count) - offsetOf(start));
}

// As keys for the comparison.
std::vector<std::string_view> bytesOf(const Tokens& tokens) {
  std::vector<std::string_view> bytes;
  bytes.reserve(tokens.size());
  for (const fl::ustring_view token : tokens) {
    bytes.emplace_back(reinterpret_cast<const char*>(token.data()),
                       token.size() * sizeof(char16_t));
  }
  return bytes;
}

// Joins changes with neither a word nor a line end between them, which are easier to read as one.
void joinNearChanges(const Tokens& tokens, std::vector<LineChange>& changes) {
  const auto isKept = [&](const LineChange& last, const LineChange& next) {
    for (std::size_t i = last.oldStart + last.oldCount; i < next.oldStart; ++i) {
      if (tokens[i] == u"\n" || std::ranges::any_of(tokens[i], isLetter)) return true;
    }
    return false;
  };
  std::vector<LineChange> joined;
  for (const LineChange& change : changes) {
    if (joined.empty() || isKept(joined.back(), change)) {
      joined.push_back(change);
      continue;
    }
    LineChange& last = joined.back();
    last.oldCount = change.oldStart + change.oldCount - last.oldStart;
    last.newCount = change.newStart + change.newCount - last.newStart;
  }
  changes = std::move(joined);
}

void addAction(std::vector<std::size_t>& actions, std::size_t action) {
  if (std::ranges::find(actions, action) == actions.end()) actions.push_back(action);
}

class EditFinder {
 public:
  explicit EditFinder(const PlannedClass& planned)
      : planned_(planned),
        newLines_(planned.newLines->getLines()),
        oldText_(*planned.oldText),
        lineStarts_(findLineStarts(oldText_)) {}

  TextEdits find() {
    findActionsOfLines();
    // Usually there is one edit for each action.
    result_.edits.reserve(planned_.actions.size());
    for (std::size_t line = 0; line < newLines_.size();) line = compareFrom(line);
    return std::move(result_);
  }

 private:
  // The first action that edits each line; a line without one has that of the line above.
  void findActionsOfLines() {
    actions_.assign(newLines_.size(), everyAction);
    for (std::size_t i = 0; i < planned_.actions.size(); ++i) {
      for (const PlannedEdit& edit : planned_.actions[i].edits) claimLines(edit.extent, i);
    }
    std::ranges::sort(furtherActions_);
    const bool isLastClaimed = actions_.back() != everyAction;
    std::size_t last = 0;
    for (std::size_t& action : actions_) last = action = action == everyAction ? last : action;
    const bool isLastDeleted = (newLines_.back().flags & SourceFile::LineDeleted) != 0;
    if (!isLastClaimed && isLastDeleted) actions_.back() = everyAction;
  }

  void claimLines(const Extent& extent, std::size_t action) {
    for (std::size_t line = extent.start.line; line <= extent.end.line; ++line) {
      if (actions_[line] == everyAction) actions_[line] = action;
      if (actions_[line] == action) continue;
      furtherActions_.emplace_back(line, action);
      share(actions_[line], action);
    }
  }

  void share(std::size_t left, std::size_t right) {
    if (left != right) result_.shared.emplace_back(left, right);
  }

  std::vector<std::size_t> actionsOf(std::size_t firstLine, std::size_t count) const {
    std::vector<std::size_t> actions;
    for (std::size_t line = firstLine; line < firstLine + count; ++line) {
      addAction(actions, actions_[line]);
      const auto further = std::ranges::equal_range(furtherActions_, line, {},
                                                    &std::pair<std::size_t, std::size_t>::first);
      for (const auto& [_, action] : further) addAction(actions, action);
    }
    return actions;
  }

  fl::ustring newText(std::size_t line) const {
    const SourceFile::Line& record = newLines_[line];
    if ((record.flags & SourceFile::LineDeleted) != 0) return {};
    fl::ustring text(record.text);
    if ((record.flags & SourceFile::LineNoNewline) == 0) text += u'\n';
    return text;
  }

  // Whether the line has its old text and its line end. Measured: with the copies of these lines,
  // the edits of a class took three times as long.
  bool isSame(std::size_t line) const {
    const SourceFile::Line& record = newLines_[line];
    constexpr auto otherFlags = SourceFile::LineDeleted | SourceFile::LineNoNewline;
    const auto oldLine =
        oldText_.substr(lineStarts_[line], lineStarts_[line + 1] - lineStarts_[line]);
    return (record.flags & otherFlags) == 0 && oldLine.size() == record.text.size() + 1 &&
           oldLine.back() == u'\n' &&
           fl::areEqualTexts(record.text, oldLine.substr(0, record.text.size()));
  }

  // Compares the line and the lines that are joined with it; returns the line after them.
  std::size_t compareFrom(std::size_t line) {
    if (isSame(line)) return line + 1;
    const std::size_t first = line;
    fl::ustring after = newText(line);
    while (++line < newLines_.size() && !after.empty() && after.back() != u'\n') {
      after += newText(line);
      share(actions_[first], actions_[line]);
    }
    const std::size_t start = lineStarts_[first];
    const fl::ustring_view before = oldText_.substr(start, lineStarts_[line] - start);
    if (before != after) compare(before, after, actionsOf(first, line - first));
    return line;
  }

  // `before` is a part of the old text.
  void compare(fl::ustring_view before, fl::ustring_view after,
               const std::vector<std::size_t>& actions) {
    const Tokens oldTokens = splitIntoTokens(before);
    const Tokens newTokens = splitIntoTokens(after);
    auto changes = diffLines(bytesOf(oldTokens), bytesOf(newTokens));
    joinNearChanges(oldTokens, changes);
    for (const LineChange& change : changes) {
      const auto oldPart = partOf(before, oldTokens, change.oldStart, change.oldCount);
      const auto newPart = partOf(after, newTokens, change.newStart, change.newCount);
      add({static_cast<std::size_t>(oldPart.data() - oldText_.data()), oldPart.size(),
           fl::ustring(newPart), actions});
    }
  }

  // Adjacent edits are joined.
  void add(TextEdit edit) {
    const bool isAdjacent = !result_.edits.empty() && endOfLastEdit() == edit.offset;
    if (!isAdjacent) {
      result_.edits.push_back(std::move(edit));
      return;
    }
    TextEdit& last = result_.edits.back();
    share(last.actions.front(), edit.actions.front());
    last.length += edit.length;
    last.text += edit.text;
    for (const std::size_t action : edit.actions) addAction(last.actions, action);
  }

  std::size_t endOfLastEdit() const {
    return result_.edits.back().offset + result_.edits.back().length;
  }

  const PlannedClass& planned_;
  const std::vector<SourceFile::Line>& newLines_;
  fl::ustring_view oldText_;
  std::vector<std::size_t> lineStarts_;
  // The first action of each line, and the further ones of some lines as pairs, sorted.
  std::vector<std::size_t> actions_;
  std::vector<std::pair<std::size_t, std::size_t>> furtherActions_;
  TextEdits result_;
};

}  // namespace

std::vector<fl::ustring_view> splitIntoTokens(fl::ustring_view text) {
  Tokens tokens;
  while (!text.empty()) {
    tokens.push_back(text.substr(0, sizeOfToken(text)));
    text.remove_prefix(tokens.back().size());
  }
  return tokens;
}

TextEdits findTextEdits(const PlannedClass& planned) {
  if (planned.newLines == nullptr) return {};
  return EditFinder(planned).find();
}

FileEdit EditPlacer::place(std::size_t offset, std::size_t length, fl::ustring_view text) {
  FileEdit edit;
  moveTo(offset);
  edit.extent.start = position_;
  edit.offset = bytes_;
  moveTo(offset + length);
  edit.extent.end = position_;
  edit.length = bytes_ - edit.offset;
  edit.text = fl::i18n::to_string(text);
  return edit;
}

void EditPlacer::moveTo(std::size_t offset) {
  for (; next_ < offset; ++next_) {
    bytes_ += sizeOf(text_[next_]);
    ++position_.column;
    if (text_[next_] == u'\n') position_ = {position_.line + 1, 0};
  }
}

std::size_t EditPlacer::sizeOf(char16_t unit) const {
  if (encoding_ == fl::EncodingType::latin1 || unit < 0x80) return 1;
  // Of the four bytes of a pair of surrogates, each counts two.
  const bool isSurrogate = (unit & 0xF800U) == 0xD800U;
  return unit < 0x800 || isSurrogate ? 2 : 3;
}

FileEdits findFileEdits(const PlannedClass& planned, fl::EncodingType encoding) {
  TextEdits found = findTextEdits(planned);
  FileEdits result{{}, std::move(found.shared)};
  if (found.edits.empty()) return result;
  EditPlacer placer(*planned.oldText, encoding);
  result.edits.reserve(found.edits.size());
  for (const TextEdit& edit : found.edits) {
    result.edits.push_back(placer.place(edit.offset, edit.length, edit.text));
    result.edits.back().action = edit.actions.front();
  }
  return result;
}

}  // namespace soca
