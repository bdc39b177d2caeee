#include "service/ActionApplier.h"

#include <stdexcept>
#include <utility>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"

namespace soca {
namespace {

PlannedEdit planEdit(const Action& action) {
  const auto& edit = static_cast<const SingleAction&>(action);
  return {edit.getExtent(), edit.getText(), edit.getDelimiterFlags()};
}

std::vector<PlannedEdit> planEdits(const Action& action) {
  std::vector<PlannedEdit> edits;
  if (!action.isGroup()) {
    edits.push_back(planEdit(action));
    return edits;
  }
  const ActionList& children = static_cast<const ActionGroup&>(action).getActions();
  edits.reserve(children.size());
  for (const auto& child : children) {
    if (!child->isGroup()) edits.push_back(planEdit(*child));
  }
  return edits;
}

}  // namespace

PlannedAction planAction(const Action& action, RuleFamilyType family) {
  return {family, action.isGroup(), action.getExtent(), planEdits(action)};
}

ActionApplier::ActionApplier(SourceFile* file, fl::ustring fileName)
    : file_(file), fileName_(std::move(fileName)) {}

std::optional<SourcePosition> ActionApplier::tryApply(const PlannedAction& action) {
  claim(action.extent);
  return applyEdits(action);
}

std::optional<EditFault> ActionApplier::applyOrFault(const PlannedAction& action) {
  if (claimedExtents_.collidesWith(action.extent)) return EditFault{EditFaultType::overlaps};
  try {
    if (const auto missing = applyEdits(action)) {
      return EditFault{EditFaultType::lacksDelimiter, *missing};
    }
  } catch (const std::out_of_range&) {
    return EditFault{EditFaultType::startsBehindLine};
  }
  claimedExtents_.add(action.extent);
  return std::nullopt;
}

void ActionApplier::apply(const PlannedAction& action) {
  // At another character than a delimiter, the search ends the process.
  if (const auto missing = tryApply(action)) file_->movePastDelimiter(*missing, {});
}

void ActionApplier::apply(const Action& action) {
  apply(planAction(action, RuleFamilyType::attributes));
}

std::optional<SourcePosition> ActionApplier::applyEdits(const PlannedAction& action) {
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

}  // namespace soca
