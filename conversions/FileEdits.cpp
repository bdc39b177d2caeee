#include "conversions/FileEdits.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "conversions/LineDiff.h"
#include "model/SourceFile.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

// The lines of a text without their line ends; after a final line end there is an empty last line.
std::vector<fl::ustring_view> splitText(fl::ustring_view text) {
  std::vector<fl::ustring_view> lines;
  lines.reserve(static_cast<std::size_t>(std::ranges::count(text, u'\n')) + 1);
  while (true) {
    const std::size_t end = text.find(u'\n');
    lines.push_back(text.substr(0, end));
    if (end == fl::ustring_view::npos) return lines;
    text.remove_prefix(end + 1);
  }
}

// Words, runs of blanks, and all other characters singly. Letters beyond ASCII are parts of words.
std::vector<std::string_view> splitIntoTokens(std::string_view text) {
  const auto kindOf = [](char c) {
    const auto unit = static_cast<unsigned char>(c);
    if (c == ' ' || c == '\t') return 1;
    const bool isLetter = (unit | 0x20U) >= 'a' && (unit | 0x20U) <= 'z';
    return isLetter || (c >= '0' && c <= '9') || c == '_' || unit >= 0x80 ? 2 : 0;
  };
  std::vector<std::string_view> tokens;
  while (!text.empty()) {
    const int kind = kindOf(text.front());
    std::size_t size = 1;
    while (kind != 0 && size < text.size() && kindOf(text[size]) == kind) ++size;
    tokens.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return tokens;
}

bool holdsWord(std::string_view text) {
  return std::ranges::any_of(text, [](unsigned char unit) {
    return ((unit | 0x20U) >= 'a' && (unit | 0x20U) <= 'z') || unit >= 0x80;
  });
}

// Joins changes with neither a word nor a line end between them, which are easier to read as one.
void joinNearChanges(const std::vector<std::string_view>& tokens,
                     std::vector<LineChange>& changes) {
  const auto isKept = [&](const LineChange& last, const LineChange& next) {
    for (std::size_t i = last.oldStart + last.oldCount; i < next.oldStart; ++i) {
      if (tokens[i] == "\n" || holdsWord(tokens[i])) return true;
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

// A position in the old file that moves forward over its text.
class Cursor {
 public:
  explicit Cursor(fl::EncodingType encoding) : encoding_(encoding) {}

  // `text` is in UTF-8.
  void pass(std::string_view text) {
    for (const char c : text) {
      const auto unit = static_cast<unsigned char>(c);
      const bool isContinuation = (unit & 0xC0U) == 0x80;
      if (encoding_ == fl::EncodingType::utf8 || !isContinuation) ++offset_;
      if (!isContinuation) position_.column += unit >= 0xF0 ? 2 : 1;
      if (c == '\n') position_ = {position_.line + 1, 0};
    }
  }

  const SourcePosition& position() const { return position_; }
  std::size_t offset() const { return offset_; }

 private:
  fl::EncodingType encoding_;
  SourcePosition position_;
  std::size_t offset_ = 0;
};

class EditFinder {
 public:
  EditFinder(const PlannedClass& planned, fl::EncodingType encoding)
      : planned_(planned),
        newLines_(planned.newLines->getLines()),
        oldLines_(splitText(*planned.oldText)),
        cursor_(encoding) {}

  FileEdits find() {
    findActionsOfLines();
    // Usually there is one edit for each action.
    result_.edits.reserve(planned_.actions.size());
    for (std::size_t line = 0; line < oldLines_.size();) line = compareFrom(line);
    return std::move(result_);
  }

 private:
  // The first action that edits each line; a line without one has that of the line above.
  void findActionsOfLines() {
    actions_.assign(oldLines_.size(), everyAction);
    for (std::size_t i = 0; i < planned_.actions.size(); ++i) {
      for (const PlannedEdit& edit : planned_.actions[i].edits) claimLines(edit.extent, i);
    }
    const bool isLastClaimed = actions_.back() != everyAction;
    std::size_t last = 0;
    for (std::size_t& action : actions_) last = action = action == everyAction ? last : action;
    const bool isLastDeleted = (newLines_.back().flags & SourceFile::LineDeleted) != 0;
    if (!isLastClaimed && isLastDeleted) actions_.back() = everyAction;
  }

  void claimLines(const Extent& extent, std::size_t action) {
    for (std::size_t line = extent.start.line; line <= extent.end.line; ++line) {
      if (actions_[line] == everyAction) actions_[line] = action;
      share(actions_[line], action);
    }
  }

  void share(std::size_t left, std::size_t right) {
    if (left != right) result_.shared.emplace_back(left, right);
  }

  std::string oldText(std::size_t line) const {
    std::string text = fl::i18n::to_string(oldLines_[line]);
    if (line + 1 < oldLines_.size()) text += '\n';
    return text;
  }

  std::string newText(std::size_t line) const {
    const SourceFile::Line& record = newLines_[line];
    if ((record.flags & SourceFile::LineDeleted) != 0) return {};
    std::string text = fl::i18n::to_string(record.text);
    if ((record.flags & SourceFile::LineNoNewline) == 0) text += '\n';
    return text;
  }

  // Compares the line and the lines that are joined with it; returns the line after them.
  std::size_t compareFrom(std::size_t line) {
    const std::size_t action = actions_[line];
    std::string before = oldText(line);
    std::string after = newText(line);
    while (++line < oldLines_.size() && !after.empty() && !after.ends_with('\n')) {
      before += oldText(line);
      after += newText(line);
      share(action, actions_[line]);
    }
    if (before == after) {
      cursor_.pass(before);
    } else {
      compare(before, after, action);
    }
    return line;
  }

  void compare(std::string_view before, std::string_view after, std::size_t action) {
    const auto oldTokens = splitIntoTokens(before);
    const auto newTokens = splitIntoTokens(after);
    auto changes = diffLines(oldTokens, newTokens);
    joinNearChanges(oldTokens, changes);
    std::size_t next = 0;
    const auto passUntil = [&](std::size_t end) {
      for (; next < end; ++next) cursor_.pass(oldTokens[next]);
    };
    for (const LineChange& change : changes) {
      passUntil(change.oldStart);
      FileEdit edit;
      edit.extent.start = cursor_.position();
      edit.offset = cursor_.offset();
      passUntil(change.oldStart + change.oldCount);
      edit.extent.end = cursor_.position();
      edit.length = cursor_.offset() - edit.offset;
      for (std::size_t i = 0; i < change.newCount; ++i) edit.text += newTokens[change.newStart + i];
      edit.action = action;
      add(std::move(edit));
    }
    passUntil(oldTokens.size());
  }

  // Adjacent edits are joined.
  void add(FileEdit edit) {
    if (!result_.edits.empty() && result_.edits.back().extent.end == edit.extent.start) {
      FileEdit& last = result_.edits.back();
      share(last.action, edit.action);
      last.extent.end = edit.extent.end;
      last.length += edit.length;
      last.text += edit.text;
      return;
    }
    result_.edits.push_back(std::move(edit));
  }

  const PlannedClass& planned_;
  const std::vector<SourceFile::Line>& newLines_;
  std::vector<fl::ustring_view> oldLines_;
  // The number of an action for each line.
  std::vector<std::size_t> actions_;
  Cursor cursor_;
  FileEdits result_;
};

}  // namespace

FileEdits findFileEdits(const PlannedClass& planned, fl::EncodingType encoding) {
  if (planned.newLines == nullptr) return {};
  return EditFinder(planned, encoding).find();
}

}  // namespace soca
