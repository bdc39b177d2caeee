#include "cli/update/WriteQueue.h"

#include <algorithm>
#include <cstddef>

#include "cli/terminal/Signals.h"
#include "cli/update/RepairNotes.h"
#include "cli/update/WriteProgress.h"

namespace soca::cli {
namespace {

bool goesOn() { return !wasInterrupted(); }

}  // namespace

WriteQueue::WriteQueue(Console* console) : console_(console) {
  // The files beside the class files must be deleted even if the reader of the output is gone.
  catchBrokenPipes();
  if (const auto lock = lockRuns(store_, *console_, goesOn)) {
    repair(*lock);
    tellOfDamaged(store_, *console_);
  }
}

void WriteQueue::repair(const RunStore::Lock& lock) {
  repaired_ = repairAndReport(store_, lock, *console_, goesOn, repaired_);
  hasFailedRepair_ = std::ranges::any_of(
      repaired_, [](const RepairedRun& run) { return !run.result.failed.empty(); });
}

void WriteQueue::add(const ClassOutcome& outcome, bool hasNewFile) {
  entries_.push_back(makeEntry(outcome, hasNewFile));
  entries_.back().sharesFile = outcome.update.hasNewText() && !hasNewFile;
}

WriteQueue::Entry WriteQueue::makeEntry(const ClassOutcome& outcome, bool hasNewFile) {
  Entry entry;
  entry.className = outcome.update.className;
  entry.file = outcome.update.file;
  entry.data = data_.put(outcome.data);
  entry.hasNewFile = hasNewFile;
  if (hasNewFile) {
    entry.newBytes = newBytes_.put(outcome.file.newBytes);
    entry.newDigest = digestOf(outcome.file.newBytes);
  }
  entry.stamp = outcome.file.stamp;
  entry.counts = ClassCounts(outcome);
  return entry;
}

void WriteQueue::replace(std::size_t entry, const ClassOutcome& outcome) {
  const bool sharesFile = entries_[entry].sharesFile;
  entries_[entry] = makeEntry(outcome, outcome.update.hasNewText() && !sharesFile);
  entries_[entry].sharesFile = sharesFile;
}

void WriteQueue::drop(std::size_t entry) {
  entries_[entry].hasNewFile = false;
  entries_[entry].data = {};
}

bool WriteQueue::lock() {
  const bool hasNewFiles = std::ranges::any_of(entries_, &Entry::hasNewFile);
  // A run that could not be repaired before would take its files back later.
  if (!hasNewFiles && interruptedRuns(store_).empty()) return false;
  lock_ = lockRuns(store_, *console_, goesOn);
  if (lock_) repair(*lock_);
  if (lock_ && !wasInterrupted()) return true;
  lock_.reset();
  return false;
}

void WriteQueue::write() {
  std::vector<FileChange> changes;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    changeOf_.push_back(changes_.size());
    if (!entry.hasNewFile) continue;
    changes_.push_back(i);
    changes.push_back({entry.file, entry.stamp, entry.newDigest});
  }
  if (changes.empty()) return;
  if (!lock_) {
    result_.isWritten.resize(changes.size());
    result_.isCutShort = true;
    return;
  }
  const auto newBytes = [this](std::size_t change) {
    std::string bytes = newBytes_.take(entries_[changes_[change]].newBytes);
    // Otherwise the stored bytes would be flushed together with the new files.
    if (change + 1 == changes_.size()) newBytes_.drop();
    return bytes;
  };
  WriteProgress progress(console_, "files written");
  result_ = writeFiles(store_, *lock_, changes, newBytes, goesOn, progress.onStep());
  lock_.reset();
}

WriteQueue::FateType WriteQueue::fateOf(std::size_t entry) const {
  if (!entries_[entry].hasNewFile) return FateType::hasNoNewFile;
  const std::size_t change = changeOf_[entry];
  if (result_.isWritten[change]) return FateType::written;
  return result_.failures.contains(change) ? FateType::failed : FateType::leftOut;
}

const std::string& WriteQueue::reasonOfFailure(std::size_t entry) const {
  return result_.failures.at(changeOf_[entry]);
}

}  // namespace soca::cli
