#include "service/ActionApplier.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"

namespace soca {

ActionApplier::ActionApplier(SourceFile* file, fl::ustring fileName)
    : file_(file), fileName_(std::move(fileName)) {}

void ActionApplier::apply(const Action& action) {
  visitEdits(action, [&](const SingleAction& edit) {
    replace(edit);
    return true;
  });
}

std::optional<SourcePosition> ActionApplier::applyUnlessDelimiterMissing(const Action& action) {
  std::optional<SourcePosition> missing;
  visitEdits(action, [&](const SingleAction& edit) {
    missing = file_->findMissingDelimiter(edit.getDelimiterFlags(), edit.getExtent());
    if (!missing) replace(edit);
    return !missing;
  });
  return missing;
}

template <class Edit>
void ActionApplier::visitEdits(const Action& action, const Edit& edit) {
  if (checkOverlap_) claim(action.getExtent());
  if (!action.isGroup()) {
    edit(static_cast<const SingleAction&>(action));
    return;
  }
  checkOverlap_ = false;
  for (const auto& child : static_cast<const ActionGroup&>(action).getActions()) {
    if (!child->isGroup() && !edit(static_cast<const SingleAction&>(*child))) break;
  }
  checkOverlap_ = true;
}

void ActionApplier::claim(const Extent& extent) {
  const auto collides = [&](const Extent& claimed) { return extent.startsWithinLinesOf(claimed); };
  if (std::ranges::any_of(claimedExtents_, collides)) {
    raiseErrMsgId(VELUM::system::Analyzer::OverlappingExtent(fileName_));
  }
  claimedExtents_.push_back(extent);
}

void ActionApplier::replace(const SingleAction& action) {
  const std::uint64_t flags = action.getDelimiterFlags();
  const fl::ustring text = action.getText();
  file_->replace(text, flags, action.getExtent());
}

}  // namespace soca
