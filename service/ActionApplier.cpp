#include "service/ActionApplier.h"

#include <cstdint>
#include <utility>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"

namespace soca {

ActionApplier::ActionApplier(SourceFile* file, fl::ustring fileName)
    : file_(file), fileName_(std::move(fileName)) {}

void ActionApplier::apply(const Action& action) {
  if (checkOverlap_) claim(action.getExtent());
  if (!action.isGroup()) {
    replace(static_cast<const SingleAction&>(action));
    return;
  }
  checkOverlap_ = false;
  for (const auto& child : static_cast<const ActionGroup&>(action).getActions()) {
    if (!child->isGroup()) replace(static_cast<const SingleAction&>(*child));
  }
  checkOverlap_ = true;
}

std::optional<SourcePosition> ActionApplier::applyUnlessDelimiterMissing(
    const PlannedAction& action) {
  claim(action.extent);
  for (const PlannedEdit& edit : action.edits) {
    const auto missing = file_->findMissingDelimiter(edit.delimiterFlags, edit.extent);
    if (missing) return missing;
    file_->replace(edit.text, edit.delimiterFlags, edit.extent);
  }
  return std::nullopt;
}

void ActionApplier::claim(const Extent& extent) {
  if (claimedExtents_.collidesWith(extent)) {
    raiseErrMsgId(VELUM::system::Analyzer::OverlappingExtent(fileName_));
  }
  claimedExtents_.add(extent);
}

void ActionApplier::replace(const SingleAction& action) {
  const std::uint64_t flags = action.getDelimiterFlags();
  const fl::ustring text = action.getText();
  file_->replace(text, flags, action.getExtent());
}

}  // namespace soca
