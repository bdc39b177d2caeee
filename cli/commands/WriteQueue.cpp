#include "cli/commands/WriteQueue.h"

#include <algorithm>
#include <cstddef>

#include "cli/commands/RepairNotes.h"
#include "cli/commands/WriteProgress.h"
#include "cli/terminal/Signals.h"

namespace soca::cli {
namespace {

bool goesOn() { return !wasInterrupted(); }

}  // namespace

WriteQueue::WriteQueue(Console* console) : console_(console) {
  // The files beside the class files must be deleted even if the reader of the output is gone.
  catchBrokenPipes();
  if (const auto lock = lockRuns(store_, *console_)) repairAndReport(store_, *lock, *console_);
}

void WriteQueue::add(const ClassOutcome& outcome, bool hasNewFile) {
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
  for (const RuleFamily& family : ruleFamilies) {
    entry.editCounts[family.type] =
        static_cast<std::uint32_t>(outcome.update.editCounts[family.type]);
  }
  entries_.push_back(std::move(entry));
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
  const auto lock = lockRuns(store_, *console_);
  if (lock) repairAndReport(store_, *lock, *console_);
  if (!lock || wasInterrupted()) {
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
  result_ = writeFiles(store_, *lock, changes, newBytes, goesOn, progress.onStep());
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
