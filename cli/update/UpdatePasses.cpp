// The part of an update in which the classes of the run see each other.
#include "cli/terminal/Signals.h"
#include "cli/update/UpdateRun.h"
#include "reports/explanations/ProgramMessages.h"
#include "reports/outcomes/Phases.h"
#include "reports/passes/OrderedWorkers.h"

namespace soca::cli {
namespace {

using fl::timing::Phase;

Failure makeUnsettledFailure(const std::string& className) {
  Failure failure;
  failure.className = className;
  failure.id = "soca:NotSettled";
  failure.message = programMessage(failure.id, {});
  return failure;
}

}  // namespace

void UpdateRun::startPasses() {
  if (options_->asService || (targets_.isOneClass() && !options_->includeSuperclasses)) return;
  passes_.emplace(
      [this](const std::string& className, PassTexts::Text text, const PassView& view,
             const PassHistory& history) {
        const WorkScope scope(this);
        return updater_.makePass(className, std::move(text), view, history);
      },
      options_->jobs);
}

void UpdateRun::settle() {
  const WorkScope scope(this);
  passes_->make([] { return !wasInterrupted(); });
  auto next = held_.entries().begin();
  auto done = held_.entries().begin();
  OrderedWorkers<HeldClasses::Entry, SettledClass>(
      options_->jobs,
      [&]() -> std::optional<HeldClasses::Entry> {
        const bool isAtEnd = next == held_.entries().end() || wasInterrupted();
        return isAtEnd ? std::nullopt : std::optional(*next++);
      },
      [this](const HeldClasses::Entry& entry) {
        const WorkScope workScope(this);
        SettledClass settled;
        if (!passes_->isReached(entry.number)) return settled;
        const std::string className = passes_->nameOf(entry.number);
        settled.before = updateAlone(className);
        settled.after = updateInPasses(className, entry.number);
        return settled;
      },
      [&](SettledClass& settled) {
        const Phase phase(printPhase);
        takeSettled(*done++, settled);
        return !wasInterrupted();
      })
      .run();
}

SingleUpdate UpdateRun::updateInPasses(const std::string& className, std::size_t number) {
  SingleUpdate update;
  if (passes_->restsOnUnsettled(number)) {
    update.failure = makeUnsettledFailure(className);
  } else {
    update = updater_.updateInPasses(className, passes_->viewsOf(number));
  }
  if (update.outcome) finishOutcome(*update.outcome);
  return update;
}

void UpdateRun::takeSettled(const HeldClasses::Entry& entry, SettledClass& settled) {
  if (!settled.after) {
    const std::string data = held_.take(entry.data);
    const std::string notes = held_.take(entry.notes);
    if (!data.empty()) report_->printData(data);
    if (!notes.empty()) report_->printNotes(notes);
    return;
  }
  if (settled.before->outcome) summary_.remove(ClassCounts(*settled.before->outcome));
  if (options_->write) reachedEntries_.insert(entry.queued);
  if (settled.after->failure) {
    settled.after->failure->className = passes_->nameOf(entry.number);
    addFailure(*settled.after->failure);
    if (options_->write) queue_->drop(entry.queued);
    return;
  }
  ClassOutcome& outcome = *settled.after->outcome;
  summary_.add(ClassCounts(outcome));
  if (options_->write) queue_->replace(entry.queued, outcome);
  print(outcome);
}

}  // namespace soca::cli
