// Applies the actions of one class.
#pragma once

#include <optional>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "rules/Action.h"
#include "service/ClaimedExtents.h"
#include "service/PlannedClass.h"

namespace soca {

// The results of the functions of the action. Without groups among the children of a group.
PlannedAction planAction(const Action& action, RuleFamilyType family);

// Each action claims its extent, a group as a whole; an action must not begin on a line that an
// earlier one has claimed. So the columns of each action stay valid. Only the beginning of the new
// extent is tested: an extent that begins above a claimed one may overlap it.
class ActionApplier {
 public:
  // `file` must outlive this object; errors name `fileName`.
  ActionApplier(SourceFile* file, fl::ustring fileName);

  // Applies the action. Stops before an edit that would end the process because of a missing
  // delimiter, and returns the place of the search; empty if there was no such edit. Raises
  // OverlappingExtent. Throws std::out_of_range as SourceFile::replace does. Edits made before that
  // are kept.
  std::optional<SourcePosition> tryApply(const PlannedAction& action);

  // The same as values: the fault because of which the action cannot be applied, or not as a whole.
  // An action with a fault claims nothing. Raises and throws nothing of the above.
  std::optional<EditFault> applyOrFault(const PlannedAction& action);

  // The same as `tryApply`, but a missing delimiter ends the process.
  void apply(const PlannedAction& action);
  void apply(const Action& action);

 private:
  void claim(const Extent& extent);

  std::optional<SourcePosition> applyEdits(const PlannedAction& action);

  SourceFile* file_;
  fl::ustring fileName_;
  // Without those of the children of groups.
  ClaimedExtents claimedExtents_;
};

}  // namespace soca
