#include "cli/update/UpdateRun.h"

#include <fmt/core.h>

#include <exception>
#include <numeric>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/terminal/Signals.h"
#include "cli/update/CommandText.h"
#include "cli/update/RepairNotes.h"
#include "files/writing/FileWriter.h"
#include "reports/FailureText.h"
#include "reports/RootText.h"
#include "reports/SummaryText.h"
#include "reports/explanations/ProgramMessages.h"
#include "reports/outcomes/Phases.h"
#include "reports/passes/OrderedWorkers.h"
#include "reports/text/TextLayout.h"

namespace soca::cli {
namespace {

using fl::timing::Phase;

UpdateRequest requestOf(const Options& options, const ConversionSelection& selection,
                        const ReportOptions& report, bool isOfSeveral) {
  UpdateRequest request;
  request.limits = {options.highestRisk(), options.rules, !options.noLayout,
                    selection.isEmpty() ? nullptr : &selection};
  request.includeSuperclasses = options.includeSuperclasses;
  request.asService = options.asService;
  request.isTidy = options.tidy;
  request.needs = options.format->needs(report);
  if (!options.reportFile.empty()) {
    request.needs = joinNeeds(request.needs, pageFormat().needs(report));
  }
  request.needs.newBytes = options.write;
  request.needs.facts = isOfSeveral && !options.asService;
  return request;
}

Failure makeWriteFailure(const std::string& className, const std::string& file,
                         const std::string& reason) {
  Failure failure;
  failure.className = className;
  failure.id = "soca:WriteFailed";
  failure.message = programMessage(failure.id, {file, reason});
  if (reason == changedReason) failure.hints = {"run the update again"};
  return failure;
}

ReportOptions reportOptionsOf(const Options& options) {
  ReportOptions report = options.forReport();
  report.command = commandOf(options);
  report.arguments = argumentsOf(options);
  return report;
}

void tellOfWaitingRuns(Console& console) {
  try {
    tellOfInterrupted(RunStore(), "the next run with --write, or 'soca undo',", console);
  } catch (const JournalError&) {
    // Only a run that writes needs the journals.
    return;
  }
}

}  // namespace

UpdateRun::UpdateRun(const Options* options, const ClassRoots* roots, Console* console)
    : options_(options),
      selection_(readSelection(*options)),
      roots_(roots),
      console_(console),
      names_(roots),
      targets_(makeTargets()),
      reportOptions_(reportOptionsOf(*options)),
      updater_(roots, &names_,
               requestOf(*options, selection_, reportOptions_,
                         options->includeSuperclasses || !targets_.isOneClass())),
      shared_([this](const std::string& className) { return updateAlone(className); }),
      guard_(options, roots, &names_, &targets_.namedFolders()),
      page_(options),
      report_(page_.makeReport({&reportOptions_, roots, &names_, console})),
      selectionNotes_(options, &selection_) {
  const bool asksInDryRun = targets_.haveFolders() && !options->noIgnore && !options->check;
  summary_.countsPackages = options->groupBy == GroupType::packages;
  asksGit_ = !options->allowDirty && (options->write || asksInDryRun);
}

ExitCodeType UpdateRun::run() {
  if (options_->write) queue_.emplace(console_);
  if (options_->stats) stats_.emplace();
  try {
    startPasses();
    computeAll();
    if (passes_ && fatalError_.empty() && !wasInterrupted()) settle();
    if (!wasInterrupted()) guard_.look(hasNothingToDo());
    const bool isHindered = !fatalError_.empty() || wasInterrupted() || guard_.stopsTheRun();
    if (options_->write && !isHindered) writeAll();
  } catch (const std::exception& error) {
    fatalError_ = faultText(error);
  }
  finish();
  return exitCode();
}

Targets UpdateRun::makeTargets() {
  return {roots_, options_->arguments,
          options_->noIgnore ? WalkType::everything : WalkType::filtered, &git_,
          options_->asService ? OtherFilesType::areErrors : OtherFilesType::arePassedOver};
}

void UpdateRun::countTargets(const std::stop_token& stop, Progress& progress) {
  try {
    Targets targets = makeTargets();
    std::size_t total = 0;
    while (!stop.stop_requested() && targets.next()) ++total;
    if (!stop.stop_requested()) progress.setTotal(total);
  } catch (const std::exception&) {
    // The update itself will report the fault.
  }
}

void UpdateRun::computeAll() {
  std::optional<Progress> progress;
  std::jthread counter;
  if (!targets_.isOneClass() && console_->hasStatusLine()) {
    progress.emplace(console_, "classes");
    try {
      counter = std::jthread([&](const std::stop_token& stop) { countTargets(stop, *progress); });
    } catch (const std::system_error&) {
      // Without a further thread the progress has no total.
    }
  }
  const auto next = [this]() -> std::optional<Target> {
    if (wasInterrupted()) return std::nullopt;
    const Phase phase(walkPhase);
    return targets_.next();
  };
  const auto consume = [&](TargetOutcome& outcome) {
    const Phase phase(printPhase);
    try {
      take(outcome);
      if (progress) progress->advance();
    } catch (const std::exception& error) {
      fatalError_ = faultText(error);
    }
    return fatalError_.empty() && !wasInterrupted();
  };
  OrderedWorkers<Target, TargetOutcome>(
      targets_.isOneClass() ? 1 : options_->jobs, next,
      [this](const Target& target) { return work(target); }, consume)
      .run();
}

TargetOutcome UpdateRun::work(const Target& target) {
  const WorkScope scope(this);
  if (options_->includeSuperclasses) return updater_.update(target, shared_);
  TargetOutcome outcome = updater_.update(target);
  for (ClassOutcome& entry : outcome.classes) finishOutcome(entry);
  return outcome;
}

SingleUpdate UpdateRun::updateAlone(const std::string& className) {
  SingleUpdate update = updater_.updateAlone(className);
  if (update.outcome) finishOutcome(*update.outcome);
  return update;
}

void UpdateRun::finishOutcome(ClassOutcome& outcome) {
  if (asksGit_ && outcome.update.hasNewText()) checkUncommitted(outcome);
  outcome.data = report_->dataOf(outcome);
  outcome.notes = report_->notesOf(outcome);
  // Already printed into the data, so freed before the outcome is queued.
  outcome.text = {};
  outcome.file.diff = {};
  outcome.file.edits = {};
  outcome.file.hunks = {};
  if (!selectionNotes_.isActive()) outcome.update.forgetMade();
}

void UpdateRun::checkUncommitted(ClassOutcome& outcome) {
  const Phase phase(gitPhase);
  auto reason = git_.findUncommitted(outcome.update.file);
  if (!reason) return;
  if (options_->write) {
    outcome.refuse(std::move(*reason));
  } else {
    outcome.writeRefusal = std::move(*reason);
  }
}

void UpdateRun::take(TargetOutcome& outcome) {
  guard_.take(outcome);
  if (outcome.hasNoClass) ++summary_.filesWithoutClass;
  if (outcome.passedOver) passOver(*outcome.passedOver);
  if (!outcome.sharedClass.empty()) outcome.classes = shared_.takeOutcomes(outcome.sharedClass);
  for (ClassOutcome& entry : outcome.classes) takeClass(entry);
  if (passes_ && outcome.bystander) {
    passes_->add(outcome.bystander->first, outcome.bystander->second, {});
  }
  for (const Failure& failure : outcome.failures) addFailure(failure);
  if (outcome.skipped) {
    summary_.addSkipped(*outcome.skipped);
    report_->addSkipped(*outcome.skipped);
  }
  if (outcome.undecided) {
    summary_.addUndecided(*outcome.undecided);
    report_->addUndecided(*outcome.undecided);
  }
}

void UpdateRun::takeClass(ClassOutcome& outcome) {
  if (selectionNotes_.isActive()) {
    selectionNotes_.take(outcome.update);
    outcome.update.forgetMade();
  }
  summary_.add(ClassCounts(outcome));
  if (!options_->quiet && options_->asService) methodChanges_.add(outcome.update);
  // A file that several classes share by links is changed once.
  const bool hasNewText = outcome.update.hasNewText();
  const fl::filesystem::FileStamp& stamp = outcome.file.stamp;
  const bool isFirst = !hasNewText || files_[stamp.device].insert(stamp.inode).second;
  if (!isFirst && options_->format->isForPeople) outcome.data.clear();
  if (options_->write) queue_->add(outcome, hasNewText && isFirst);
  if (!passes_) return print(outcome);
  outcome.facts.isKept = outcome.update.isRefused();
  const std::size_t number =
      passes_->add(outcome.update.className, outcome.facts, outcome.update.file);
  if (held_.empty() && outcome.facts.isIndependent()) return print(outcome);
  const std::size_t queued = options_->write ? queue_->entries().size() - 1 : 0;
  HeldClasses::Texts texts = textsOf(outcome);
  if (outcome.facts.isIndependent()) texts.counts = {};
  held_.add(number, queued, texts);
}

void UpdateRun::print(const ClassOutcome& outcome) {
  if (!options_->write && !outcome.data.empty()) report_->printData(outcome.data);
  if (!outcome.notes.empty()) report_->printNotes(outcome.notes);
}

void UpdateRun::addFailure(const Failure& failure) {
  summary_.addFailure(failure);
  report_->addFailure(failure);
}

void UpdateRun::passOver(const PassedOverFile& file) {
  summary_.addPassedOver(file.type);
  const bool isNamed = file.type == PassedOverFile::Type::isNamed;
  const bool isOneTooMany = reportOptions_.quiet && summary_.passedOver > mostInQuietRun;
  if (isNamed ? isOneTooMany : !options_->verbose) return;
  console_->tell(
      fmt::format("note: '{}' is passed over: {}", names_.shown(file.path), file.reason));
}

bool UpdateRun::hasNothingToDo() const {
  return summary_.classes > 0 &&
         summary_.changed + summary_.refused + summary_.undecided + summary_.failed == 0;
}

bool UpdateRun::lookedAtNothing() const {
  const std::size_t classes = summary_.classes + summary_.failed + summary_.undecided;
  return classes == 0 && targets_.haveFolders() && !options_->asService && !wasInterrupted() &&
         fatalError_.empty() && !guard_.stopsTheRun();
}

std::string UpdateRun::nothingText() const {
  const auto& named = targets_.namedFolders();
  const std::string folders = listFolders(named, names_);
  if (summary_.skipped > 0) return fmt::format("no class in {} is a System object", folders);
  if (summary_.filesWithoutClass > 0) return fmt::format("no file in {} holds a class", folders);
  std::string text = describeNoClassFiles(named, names_);
  if (!options_->noIgnore && text.starts_with("there is no")) {
    text += "; without --no-ignore, files that git ignores and links to folders are omitted";
  }
  return text;
}

void UpdateRun::writeAll() {
  {
    const Phase phase(writePhase);
    if (queue_->lock()) updateChangedAgain();
    queue_->write();
  }
  isWritten_ = !queue_->result().isCutShort;
  fatalError_ = queue_->result().problem;
  takeWritten();
}

void UpdateRun::updateChangedAgain() {
  std::vector<std::size_t> changed = findChanged(reads_);
  if (changed.empty()) return;
  console_->tell(fmt::format("files have changed since they were read; {} again",
                             changed.size() == 1
                                 ? "1 class is updated"
                                 : fmt::format("{} classes are updated", shown(changed.size()))));
  sotarn::ReadClasses reads;
  {
    const fl::filesystem::FileView view;
    const fl::filesystem::FileView::Scope scope(view);
    const sotarn::ReadClasses::Scope readsScope(&reads);
    for (const std::size_t entry : changed) {
      if (!wasInterrupted()) updateAgain(entry);
    }
  }
  // What failed or no longer changes is not written anyway.
  std::erase_if(changed, [&](std::size_t i) { return !queue_->entries()[i].hasNewFile; });
  if (wasInterrupted()) return;
  for (const std::size_t entry : findChanged(reads, changed)) {
    failWriting(entry, std::string(changedReason));
    queue_->drop(entry);
  }
}

std::vector<std::size_t> UpdateRun::findChanged(const sotarn::ReadClasses& reads) const {
  std::vector<std::size_t> entries(queue_->entries().size());
  std::iota(entries.begin(), entries.end(), std::size_t{0});
  std::erase_if(entries, [&](std::size_t i) { return queue_->entries()[i].sharesFile; });
  return findChanged(reads, std::move(entries));
}

std::vector<std::size_t> UpdateRun::findChanged(const sotarn::ReadClasses& reads,
                                                std::vector<std::size_t> entries) const {
  std::vector<std::string> names;
  for (const std::size_t i : entries) names.push_back(queue_->entries()[i].className);
  const auto changed = reads.findChanged(names);
  std::erase_if(entries,
                [&](std::size_t i) { return !changed.contains(queue_->entries()[i].className); });
  return entries;
}

void UpdateRun::updateAgain(std::size_t entry) {
  const std::string className = queue_->entries()[entry].className;
  if (reachedEntries_.contains(entry)) {
    // The texts of other classes that it saw may have changed too.
    failWriting(entry, std::string(changedReason));
    return queue_->drop(entry);
  }
  summary_.remove(queue_->entries()[entry].counts);
  SingleUpdate update = updateAlone(className);
  if (const std::string& file = queue_->entries()[entry].file;
      update.outcome && update.outcome->update.file != file) {
    // The class has another file now, which is perhaps none of the targets.
    update.failure = makeWriteFailure(className, file, std::string(changedReason));
  }
  if (update.failure) {
    update.failure->className = className;
    addFailure(*update.failure);
    queue_->drop(entry);
    return;
  }
  selectionNotes_.takeAgain(update.outcome->update);
  summary_.add(ClassCounts(*update.outcome));
  if (!options_->quiet && options_->asService) methodChanges_.add(update.outcome->update);
  queue_->replace(entry, *update.outcome);
  report_->printNotes(report_->notesOf(*update.outcome));
}

void UpdateRun::failWriting(std::size_t entry, const std::string& reason) {
  const WriteQueue::Entry& failed = queue_->entries()[entry];
  summary_.removeUnwritten(failed.counts);
  addFailure(makeWriteFailure(failed.className, failed.file, reason));
}

// Files that were not written do not count as results.
void UpdateRun::takeWritten() {
  const auto& entries = queue_->entries();
  const bool isPartlyWritten = queue_->result().writtenCount > 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    switch (queue_->fateOf(i)) {
      case WriteQueue::FateType::hasNoNewFile:
      case WriteQueue::FateType::written:
        if (entries[i].data.size > 0) report_->printData(queue_->dataOf(entries[i]));
        break;
      case WriteQueue::FateType::failed:
        failWriting(i, queue_->reasonOfFailure(i));
        break;
      case WriteQueue::FateType::leftOut:
        ++leftOut_;
        if (isPartlyWritten) summary_.removeConversions(entries[i].counts);
        break;
    }
  }
}

void UpdateRun::finish() {
  if (fatalError_.empty() && !wasInterrupted()) selectionNotes_.report(*report_, *console_);
  guard_.report(*report_);
  report_->finish(exitCode());
  if (fatalError_.empty() && (isWritten_ || !wasInterrupted())) {
    fatalError_ = page_.commit().value_or("");
  }
  if (!options_->write) tellOfWaitingRuns(*console_);
  if (!options_->quiet) printWarnings();
  if (options_->quiet && options_->write) guard_.printNote(*console_);
  if (reportOptions_.quiet && summary_.passedOver > mostInQuietRun) {
    console_->printError(
        fmt::format("  and {} more passed over\n", shown(summary_.passedOver - mostInQuietRun)));
  }
  if (queue_) {
    for (const std::string& warning : queue_->result().warnings) console_->tell(warning);
  }
  if (!fatalError_.empty()) console_->complain(fatalError_);
  if (lookedAtNothing()) console_->complain(nothingText());
  console_->tell(summaryText());
  if (!options_->quiet || options_->summary) printNumbers();
  const RunNumber run = writtenRun();
  if (run != 0 && !options_->quiet) {
    console_->tell(fmt::format("this was run {}; 'soca undo {}' puts the files back", run, run));
  }
  if (stats_) console_->printError(stats_->text());
  guard_.printSuggestion(*console_);
}

std::string UpdateRun::shown(std::size_t number) const {
  return options_->asService ? std::to_string(number) : groupDigits(number);
}

void UpdateRun::printNumbers() {
  const std::size_t width = console_->width();
  const GroupType group = options_->groupBy.value_or(GroupType::kinds);
  console_->printError(options_->asService ? formatDetails(summary_, width)
                                           : formatNumbers(summary_, group, width));
}

void UpdateRun::printWarnings() {
  for (const std::string& warning : targets_.warnings()) console_->tell(warning);
  for (const std::string& warning : methodChanges_.warnings()) console_->tell(warning);
  guard_.printNote(*console_);
  if (summary_.undecided > 0) {
    console_->tell(fmt::format(
        "{} undecided: name the roots of their superclasses with --path, or list in a class table "
        "what these derive from ('soca classes --unresolved' prints them)",
        summary_.undecided == 1 ? "1 class is"
                                : fmt::format("{} classes are", shown(summary_.undecided))));
  }
  if (summary_.uncommitted > 0) {
    console_->tell(
        fmt::format("warning: --write would refuse {} of these, which git could not bring back; "
                    "commit or stash first, or give --allow-dirty",
                    shown(summary_.uncommitted)));
  }
}

std::string UpdateRun::summaryText() const {
  const bool isPartlyWritten = queue_ && queue_->result().writtenCount > 0;
  const auto tense = isWritten_ || isPartlyWritten ? TenseType::changed : TenseType::wouldChange;
  Summary summary = summary_;
  if (isPartlyWritten) {
    summary.changed -= leftOut_;
    summary.classes -= leftOut_;
  }
  std::string text = formatSummary(
      summary, tense, options_->asService ? NumbersType::service : NumbersType::program);
  if (isPartlyWritten && leftOut_ > 0) {
    text += fmt::format("; {} more would change and {} not written", shown(leftOut_),
                        leftOut_ == 1 ? "was" : "were");
  } else if (options_->write && !isWritten_) {
    text += "; nothing was written";
  }
  return wasInterrupted() && !isWritten_ ? "interrupted; " + text : text;
}

ExitCodeType UpdateRun::exitCode() const {
  if (wasInterrupted() && !isWritten_) return interruptExitCode();
  const std::size_t leftAlone = summary_.failed + summary_.refused + summary_.undecided;
  if (!fatalError_.empty() || leftAlone > 0 || guard_.stopsTheRun() || lookedAtNothing()) {
    return ExitCodeType::failed;
  }
  if (queue_ && queue_->hasFailedRepair()) return ExitCodeType::failed;
  return options_->check && summary_.changed > 0 ? ExitCodeType::somethingToChange
                                                 : ExitCodeType::done;
}

}  // namespace soca::cli
