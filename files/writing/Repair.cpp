#include "files/writing/Repair.h"

#include <fmt/core.h>

#include <string>

#include "files/writing/Journal.h"
#include "files/writing/Restore.h"

namespace soca::cli {
namespace {

std::string describe(RunNumber run, bool wasUndone, const RestoreResult& result) {
  std::string text = wasUndone ? fmt::format("the undo of run {} was interrupted", run)
                               : fmt::format("run {} was interrupted", run);
  const std::size_t count = result.restored.size();
  if (result.isCutShort) return text + "; putting its files back was interrupted, too";
  if (count == 0) return text + "; it had left no changed file, and what else it left is removed";
  return text + fmt::format("; {} as before the run now",
                            count == 1 ? "1 file that it had changed is"
                                       : fmt::format("{} files that it had changed are", count));
}

void repair(RunNumber run, Journal& journal, Console& console, const GoesOn& goesOn) {
  const RestoreResult result = repairRun(journal, goesOn);
  console.tell(describe(run, journal.wasDone(), result));
  for (const LeftFile& file : result.changed) {
    console.complain(fmt::format("'{}' is left as it is: {}", file.path, file.reason));
  }
  for (const LeftFile& file : result.failed) {
    console.complain(
        fmt::format("'{}': {}; this is tried again with the next run", file.path, file.reason));
  }
}

}  // namespace

std::vector<RunNumber> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                  Console& console, const GoesOn& goesOn) {
  std::vector<RunNumber> repaired;
  for (const RunNumber run : store.runs()) {
    if (!goesOn()) break;
    if (isSettled(store.folderOf(run))) continue;
    const auto journal = openJournal(store.folderOf(run));
    if (journal == nullptr) continue;
    if (journal->state() == Journal::StateType::notBegun) {
      store.remove(lock, run);
      if (journal->isRemainder()) continue;
      console.tell(fmt::format("run {} was interrupted before it changed a file", run));
    } else if (journal->state() == Journal::StateType::interrupted) {
      repair(run, *journal, console, goesOn);
    } else {
      continue;
    }
    repaired.push_back(run);
  }
  return repaired;
}

}  // namespace soca::cli
