// Carries out the actions of one class.
#pragma once

#include <optional>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "rules/Action.h"
#include "service/ClaimedExtents.h"
#include "service/UpdatePlan.h"

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

  // The same for an action that was asked before. Stops in front of an edit that would end the
  // process for want of a delimiter, and returns the place where it looks for one; nothing if there
  // was no such edit.
  std::optional<SourcePosition> applyUnlessDelimiterMissing(const PlannedAction& action);

 private:
  void claim(const Extent& extent);
  void replace(const SingleAction& action);

  SourceFile* file_;
  fl::ustring fileName_;
  // False exactly while the children of a group are applied.
  bool checkOverlap_ = true;
  // Those of a group's children are not among them.
  ClaimedExtents claimedExtents_;
};

}  // namespace soca
