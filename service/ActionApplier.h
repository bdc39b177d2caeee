// Applies the actions of one class.
#pragma once

#include <optional>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "rules/Action.h"
#include "service/ClaimedExtents.h"
#include "service/UpdatePlan.h"

namespace soca {

// Each action claims its extent, a group as a whole; an action must not begin on a line that an
// earlier one has claimed. So the columns of each action stay valid. Only the beginning of the new
// extent is tested: an extent that begins above a claimed one may overlap it.
class ActionApplier {
 public:
  // `file` must outlive this object; errors name `fileName`.
  ActionApplier(SourceFile* file, fl::ustring fileName);

  // Raises OverlappingExtent. Throws std::out_of_range, or ends the process, as SourceFile::replace
  // does. Edits made before that are kept.
  void apply(const Action& action);

  // The same for a planned action. Stops before an edit that would end the process because of a
  // missing delimiter, and returns the place of the search; empty if there was no such edit.
  std::optional<SourcePosition> applyUnlessDelimiterMissing(const PlannedAction& action);

 private:
  void claim(const Extent& extent);
  void replace(const SingleAction& action);

  SourceFile* file_;
  fl::ustring fileName_;
  // False only while the children of a group are applied.
  bool checkOverlap_ = true;
  // Without those of the children of groups.
  ClaimedExtents claimedExtents_;
};

}  // namespace soca
