// The part of an update in which the classes of the run see each other.
#include "cli/terminal/Signals.h"
#include "cli/update/UpdateRun.h"
#include "reports/outcomes/Failures.h"
#include "reports/outcomes/Phases.h"

namespace soca::cli {
using fl::timing::Phase;

void UpdateRun::startPasses() {
  if (options_->asService || (targets_.isOneClass() && !options_->includeSuperclasses)) return;
  passes_.emplace(
      [this](const std::string& className, const std::vector<PassView>& views) {
        return updateInPasses(className, views);
      },
      [this](std::size_t number, SingleUpdate& update) { takeAgain(number, update); },
      options_->jobs);
}

void UpdateRun::settle() {
  {
    const WorkScope scope(this);
    passes_->make([] { return !wasInterrupted(); });
  }
  const Phase phase(printPhase);
  for (const HeldClasses::Entry& entry : held_.entries()) {
    if (wasInterrupted()) return;
    printSettled(entry);
  }
  // The writing needs the memory.
  passes_.reset();
  held_.clear();
}

SingleUpdate UpdateRun::updateInPasses(const std::string& className,
                                       const std::vector<PassView>& views) {
  const WorkScope scope(this);
  SingleUpdate update = updater_.updateInPasses(className, views);
  if (update.outcome) finishOutcome(*update.outcome);
  return update;
}

HeldClasses::Texts UpdateRun::textsOf(const ClassOutcome& outcome) const {
  return {options_->write ? std::string() : outcome.data, outcome.notes,
          pack(ClassCounts(outcome))};
}

void UpdateRun::takeAgain(std::size_t number, SingleUpdate& update) {
  HeldClasses::Entry& entry = held_.find(number);
  if (entry.countsSize > 0) summary_.remove(unpackCounts(held_.take(entry).counts));
  heldFailures_.erase(number);
  if (update.failure) {
    update.failure->className = passes_->nameOf(number);
    heldFailures_.emplace(number, std::move(*update.failure));
    held_.put({}, entry);
    return;
  }
  selectionNotes_.takeAgain(update.outcome->update);
  summary_.add(ClassCounts(*update.outcome));
  held_.put(textsOf(*update.outcome), entry);
  if (options_->write) queue_->replace(entry.queued, *update.outcome);
}

void UpdateRun::printSettled(const HeldClasses::Entry& entry) {
  const bool isReached = passes_->isReached(entry.number);
  if (isReached && options_->write) reachedEntries_.insert(entry.queued);
  if (isReached && passes_->restsOnUnsettled(entry.number)) {
    SingleUpdate update;
    update.failure = describeUnsettled();
    takeAgain(entry.number, update);
  }
  const auto failure = heldFailures_.find(entry.number);
  if (failure != heldFailures_.end()) {
    addFailure(failure->second);
    if (options_->write) queue_->drop(entry.queued);
    return;
  }
  const HeldClasses::Texts texts = held_.take(entry);
  if (!texts.data.empty()) report_->printData(texts.data);
  if (!texts.notes.empty()) report_->printNotes(texts.notes);
}

}  // namespace soca::cli
