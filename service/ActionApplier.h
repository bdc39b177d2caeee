// Carries out the actions of one class.
#pragma once

#include <list>
#include <optional>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {

// Each action claims its extent, a group as a whole; none may begin on a line that an earlier one
// claimed. So the columns of an action stay valid, and lines never move. The test looks at nothing
// but where the new extent begins: what begins above a claim may run over it.
class ActionApplier {
 public:
  // `file` must outlive this object; `fileName` is what an error names.
  ActionApplier(SourceFile* file, fl::ustring fileName);

  // Raises OverlappingExtent. Throws std::out_of_range, or ends the process, where
  // SourceFile::replace does. What was edited until then stays edited.
  void apply(const Action& action);

  // As `apply`, but stops in front of an edit that would end the process for want of a delimiter,
  // and returns the place where it looks for one; nothing if there was no such edit.
  std::optional<SourcePosition> applyUnlessDelimiterMissing(const Action& action);

 private:
  void claim(const Extent& extent);
  void replace(const SingleAction& action);
  // Calls `edit` with each edit of the action as long as it returns true.
  template <class Edit>
  void visitEdits(const Action& action, const Edit& edit);

  SourceFile* file_;
  fl::ustring fileName_;
  // False exactly while the children of a group are applied.
  bool checkOverlap_ = true;
  // The extents of the actions applied so far; those of a group's children are not among them.
  std::list<Extent> claimedExtents_;
};

}  // namespace soca
