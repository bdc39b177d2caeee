#include "files/writing/Repair.h"

#include <memory>
#include <utility>

#include "files/writing/Journal.h"

namespace soca {
namespace {

RepairedRun repair(RunNumber run, Journal& journal, const GoesOn& goesOn, const OnStep& onStep) {
  RepairedRun repaired{run, RepairedRun::Type::takenBack, repairRun(journal, goesOn, onStep)};
  if (journal.wasDone()) repaired.type = RepairedRun::Type::undoCompleted;
  return repaired;
}

// The journal of an interrupted run; null for one that needs no repair, or cannot be used.
std::unique_ptr<Journal> openInterrupted(const std::string& folder) {
  if (isSettled(folder)) return nullptr;
  auto journal = openJournal(folder);
  const bool isUsable = journal != nullptr && journal->hasIntactBytes();
  return isUsable ? std::move(journal) : nullptr;
}

}  // namespace

std::vector<RunNumber> interruptedRuns(const RunStore& store) {
  auto runs = store.runs();
  std::erase_if(runs, [&](RunNumber run) { return !openInterrupted(store.folderOf(run)); });
  return runs;
}

std::vector<DamagedRun> findDamagedRuns(const RunStore& store) {
  std::vector<DamagedRun> damaged;
  for (const RunNumber run : store.runs()) {
    if (auto fault = findFault(store.folderOf(run))) damaged.push_back({run, std::move(*fault)});
  }
  return damaged;
}

std::vector<RepairedRun> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                    const GoesOn& goesOn, const OnStep& onStep) {
  std::vector<RepairedRun> repaired;
  for (const RunNumber run : store.runs()) {
    if (!goesOn()) return repaired;
    if (const auto journal = openInterrupted(store.folderOf(run))) {
      repaired.push_back(repair(run, *journal, goesOn, onStep));
    }
  }
  for (const RunNumber run : store.removeRests(lock)) {
    repaired.push_back({run, RepairedRun::Type::notBegun, {}});
  }
  return repaired;
}

}  // namespace soca
