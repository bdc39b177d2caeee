#include "service/TidyEdits.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

#include "rules/MethodRules.h"
#include "rules/MixinDeprecationFactory.h"
#include "service/LineEnds.h"

namespace soca {
namespace {

constexpr fl::ustring_view blanks = u"\t\v\f\r ";
constexpr fl::ustring_view continuation = u"...";
constexpr std::uint64_t lineEnd = std::numeric_limits<std::uint64_t>::max();

fl::ustring_view withoutBlanks(fl::ustring_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// Whether the text, without the blanks around it, is a comment with no other word than the name:
//
//   % f   %% f   % --- f() ---
bool isCommentOf(fl::ustring_view name, fl::ustring_view text) {
  constexpr fl::ustring_view ornaments = u"%-=*#+~.:|/<>() \t";
  text = withoutBlanks(text);
  if (!text.starts_with(u'%')) return false;
  text.remove_prefix(std::min(text.find_first_not_of(ornaments), text.size()));
  if (!text.starts_with(name)) return false;
  return text.find_first_not_of(ornaments, name.size()) == fl::ustring_view::npos;
}

// The new superclass list in the form of the old one: between two names that stay is what was
// between them, up to the first line end. The comment of a name is that of the continuation after
// it.
class ListForm {
 public:
  ListForm(const std::vector<SuperClassReference>* superClasses, const SourceFile* file)
      : superClasses_(*superClasses), file_(*file) {}

  bool isWrapped() const {
    return superClasses_.front().extent.start.line < superClasses_.back().extent.end.line;
  }

  // `names` has the new name of each superclass; empty for one that is deleted.
  fl::ustring makeText(const std::vector<fl::ustring>& names) const {
    fl::ustring text;
    std::size_t last = names.size();
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (names[i].empty()) continue;
      if (last < names.size()) text += separator(last, i);
      text += names[i];
      last = i;
    }
    return text;
  }

  // The comment of the last name that stays if those after it are deleted; empty if it has none.
  fl::ustring lastComment(const std::vector<fl::ustring>& names) const {
    std::size_t last = names.size() - 1;
    while (last > 0 && names[last].empty()) --last;
    if (last + 1 == names.size()) return {};
    const fl::ustring text = textAfter(last);
    fl::ustring_view line = withoutBlanks(fl::ustring_view(text).substr(0, text.find(u'\n')));
    if (line.starts_with(u'&')) line = withoutBlanks(line.substr(1));
    if (!line.starts_with(continuation)) return {};
    return fl::ustring(withoutBlanks(line.substr(continuation.size())));
  }

 private:
  // The text after one of the names up to the next.
  fl::ustring textAfter(std::size_t index) const {
    const SourcePosition& start = superClasses_[index].extent.end;
    const SourcePosition& end = superClasses_[index + 1].extent.start;
    fl::ustring text;
    for (std::uint64_t line = start.line; line <= end.line; ++line) {
      fl::ustring_view part = file_.getLines()[line].text;
      if (line == end.line) part = part.substr(0, end.column);
      if (line == start.line) part.remove_prefix(start.column);
      text.append(line > start.line ? u"\n" : u"").append(part);
    }
    return text;
  }

  fl::ustring separator(std::size_t from, std::size_t to) const {
    for (std::size_t i = from; i < to; ++i) {
      fl::ustring text = textAfter(i);
      if (text.find(u'\n') != fl::ustring::npos) return text;
    }
    return textAfter(from);
  }

  const std::vector<SuperClassReference>& superClasses_;
  const SourceFile& file_;
};

class EditTidier {
 public:
  EditTidier(const SourceFile* file, PlannedClass* planned) : file_(*file), planned_(*planned) {
    for (const PlannedAction& action : planned_.actions) {
      for (const PlannedEdit& edit : action.edits) countLines(edit);
    }
  }

  void keepListForm(const ClassDefinition& definition, const MetaDataInterface& metaData) {
    const auto mixins =
        std::ranges::find(planned_.actions, RuleFamilyType::mixins, &PlannedAction::family);
    if (mixins == planned_.actions.end()) return;
    const auto& superClasses = definition.getSuperClasses();
    const ListForm form(&superClasses, &file_);
    if (!form.isWrapped()) return;
    PlannedEdit& edit = mixins->edits.front();
    const std::vector<fl::ustring> names = newSuperClassNames(superClasses, metaData);
    edit.text = form.makeText(names);
    takeComment(form.lastComment(names), edit);
  }

  void tidyDeletions() {
    for (std::size_t i = 0; i < planned_.actions.size(); ++i) {
      PlannedAction& action = planned_.actions[i];
      if (action.edits.size() == 1) tidyDeletion(deletedMethodOf(i), action);
    }
  }

 private:
  // What an edit replaces of a line.
  struct EditedPart {
    // The first column, and the one after the last.
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    bool isDeletion = false;
    // Of an edit that goes on in later lines: whether it deletes up to the end of one.
    bool isUpToLineEnd = false;
  };

  void countLines(const PlannedEdit& edit) {
    const auto replaced = findReplaced(file_, edit);
    if (!replaced) return;
    const auto& [start, end] = *replaced;
    const bool isDeletion = edit.text.empty();
    const bool isUpToLineEnd = withoutBlanks(textOf(end.line).substr(end.column)).empty();
    const bool isSingleLine = start.line == end.line;
    const std::uint64_t last = isSingleLine ? end.column : lineEnd;
    editsOfLine_[start.line].push_back({start.column, last, isDeletion, isUpToLineEnd});
    if (!isSingleLine) editsOfLine_[end.line].push_back({0, end.column, isDeletion});
  }

  // Whether an edit changes the columns, or text between them; an edit that ends or begins with
  // them does not.
  bool isEdited(std::uint64_t line, std::uint64_t first, std::uint64_t last) const {
    const auto edits = editsOfLine_.find(line);
    return edits != editsOfLine_.end() && std::ranges::any_of(edits->second, [&](const auto& edit) {
             return edit.first < last && edit.last > first;
           });
  }

  // The deletion that begins in the line after the column, with only blanks between; null if there
  // is none.
  const EditedPart* findDeletionAt(std::uint64_t line, std::uint64_t column) const {
    const auto edits = editsOfLine_.find(line);
    if (edits == editsOfLine_.end()) return nullptr;
    const std::uint64_t next = textOf(line).find_first_not_of(blanks, column);
    const auto edit = std::ranges::find_if(edits->second, [&](const EditedPart& part) {
      return part.isDeletion && column <= part.first && part.first <= next && next < part.last;
    });
    return edit == edits->second.end() ? nullptr : &*edit;
  }

  // Whether no text stays between the position and the end of its line.
  bool isRestDeleted(SourcePosition position) const {
    while (!withoutBlanks(textOf(position.line).substr(position.column)).empty()) {
      const EditedPart* next = findDeletionAt(position.line, position.column);
      if (next == nullptr) return false;
      if (next->last == lineEnd) return next->isUpToLineEnd;
      position.column = next->last;
    }
    return true;
  }

  // The comment after the list belongs to the last name. If that is deleted, the comment of the
  // last one that stays takes its place, if it has one.
  //
  // After an edit over three lines, the rest would be on a line of its own. Code stays there,
  // because the edit would hide where it comes from.
  void takeComment(const fl::ustring& lastComment, PlannedEdit& edit) const {
    SourcePosition& end = edit.extent.end;
    const fl::ustring_view rest = textOf(end.line).substr(end.column);
    const fl::ustring_view comment = withoutBlanks(rest);
    const bool isContinued = comment.starts_with(continuation);
    if (!comment.empty() && !comment.starts_with(u'%') && !isContinued) return;
    const std::size_t kept = rest.find_last_not_of(blanks) + 1;
    if (!lastComment.empty()) {
      const bool hasSign = isContinued || lastComment.starts_with(u'%');
      edit.text.append(isContinued ? u" ... " : hasSign ? u" " : u" % ").append(lastComment);
    } else if (end.line - edit.extent.start.line >= 2) {
      edit.text += rest.substr(0, kept);
    } else {
      return;
    }
    end.column += kept;
  }

  fl::ustring_view textOf(std::uint64_t line) const { return file_.getLines()[line].text; }

  // The name of the method that the action deletes; empty for other actions.
  fl::ustring_view deletedMethodOf(std::size_t action) const {
    const RuleConversion& owner =
        planned_.conversions[planned_.ownersOf(action).front().conversion];
    const bool isDeletion = owner.method != nullptr && owner.newName.empty();
    return isDeletion ? owner.method->name->text.view() : fl::ustring_view();
  }

  // An earlier pass may have renamed the method.
  static bool isCommentOfMethod(fl::ustring_view method, fl::ustring_view text) {
    if (method.empty()) return false;
    const fl::ustring_view oldName = oldNameOf(method);
    return isCommentOf(method, text) || (!oldName.empty() && isCommentOf(oldName, text));
  }

  // Deletes blanks and comments around what the only edit of the action deletes.
  void tidyDeletion(fl::ustring_view method, PlannedAction& action) {
    const auto replaced = findReplaced(file_, action.edits.front());
    if (!replaced || !action.edits.front().text.empty() || replaced->start == replaced->end) return;
    const SourcePosition& start = replaced->start;
    const fl::ustring_view before = withoutBlanks(textOf(start.line).substr(0, start.column));
    if (before.empty()) removeCommentAbove(method, start.line, action);
    trim(method, *replaced, action);
  }

  // Edits of one line are made from right to left.
  void trim(fl::ustring_view method, const Extent& replaced, PlannedAction& action) {
    const auto& [start, end] = replaced;
    const fl::ustring_view last = textOf(end.line);
    const fl::ustring_view rest = withoutBlanks(last.substr(end.column));
    const bool losesComment = isCommentOfMethod(method, rest);
    const fl::ustring_view first = textOf(start.line).substr(0, start.column);
    const std::size_t kept = first.find_last_not_of(blanks) + 1;
    const bool isAtLineEnd = losesComment || endsFirstLine(file_, replaced) || isRestDeleted(end);
    const bool isLineKept = kept > 0;
    const std::size_t restEnd = last.size() - (last.ends_with(u'\r') ? 1 : 0);
    const bool isSingleLine = start.line == end.line;
    if (losesComment || (rest.empty() && isSingleLine && isLineKept)) {
      addDeletion({end, {end.line, std::max<std::uint64_t>(restEnd, end.column)}},
                  action.edits.begin(), action);
    }
    if (isAtLineEnd && isLineKept && !isEdited(start.line, kept, start.column)) {
      addDeletion({{start.line, kept}, start}, action.edits.end(), action);
    }
  }

  // The line must be a comment even without the line above it.
  void removeCommentAbove(fl::ustring_view method, std::uint64_t line, PlannedAction& action) {
    if (line == 0 || !isCommentOfMethod(method, textOf(line - 1))) return;
    const bool mayContinue =
        line > 1 && textOf(line - 2).find(continuation) != fl::ustring_view::npos;
    if (mayContinue || editsOfLine_.contains(line - 1)) return;
    addDeletion({{line - 1, 0}, {line - 1, textOf(line - 1).size()}}, action.edits.end(), action);
  }

  static void addDeletion(const Extent& extent, std::vector<PlannedEdit>::iterator place,
                          PlannedAction& action) {
    if (extent.start != extent.end) action.edits.insert(place, {extent, u"", 0});
  }

  const SourceFile& file_;
  PlannedClass& planned_;
  // Of the edits that begin or end on each line.
  std::unordered_map<std::uint64_t, std::vector<EditedPart>> editsOfLine_;
};

}  // namespace

void tidyEdits(const ClassDefinition& definition, const MetaDataInterface& metaData,
               const SourceFile& file, PlannedClass& planned) {
  EditTidier tidier(&file, &planned);
  tidier.keepListForm(definition, metaData);
  tidier.tidyDeletions();
}

}  // namespace soca
