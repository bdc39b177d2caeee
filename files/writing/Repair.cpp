#include "files/writing/Repair.h"

#include <utility>

#include "files/writing/Journal.h"

namespace soca {
namespace {

RepairedRun repair(RunNumber run, Journal& journal, const GoesOn& goesOn, const OnStep& onStep) {
  RepairedRun repaired{run, RepairedRun::Type::takenBack, repairRun(journal, goesOn, onStep)};
  if (journal.wasDone()) repaired.type = RepairedRun::Type::undoCompleted;
  return repaired;
}

}  // namespace

std::vector<RunNumber> interruptedRuns(const RunStore& store) {
  auto runs = store.runs();
  std::erase_if(runs, [&](RunNumber run) {
    if (isSettled(store.folderOf(run))) return true;
    const auto journal = openJournal(store.folderOf(run));
    return journal == nullptr || journal->state() != Journal::StateType::interrupted;
  });
  return runs;
}

std::vector<RepairedRun> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                    const GoesOn& goesOn, const OnStep& onStep) {
  std::vector<RepairedRun> repaired;
  for (const RunNumber run : store.runs()) {
    if (!goesOn()) break;
    if (isSettled(store.folderOf(run))) continue;
    const auto journal = openJournal(store.folderOf(run));
    if (journal == nullptr) continue;
    if (journal->state() == Journal::StateType::notBegun) {
      store.remove(lock, run);
      if (!journal->isRemainder()) repaired.push_back({run, RepairedRun::Type::notBegun, {}});
    } else if (journal->state() == Journal::StateType::interrupted) {
      repaired.push_back(repair(run, *journal, goesOn, onStep));
    }
  }
  return repaired;
}

}  // namespace soca
