// Repairs interrupted runs.
#pragma once

#include <vector>

#include "files/writing/Restore.h"
#include "files/writing/RunStore.h"

namespace soca {

// An interrupted run, and the result of its repair.
struct RepairedRun {
  // `notBegun`: it had not changed any file; `takenBack`: its files were restored, with the
  // exceptions in `result`; `undoCompleted`: its undo was interrupted, and was completed in the
  // same way.
  enum class Type { notBegun, takenBack, undoCompleted };
  RunNumber run = 0;
  Type type = Type::notBegun;
  RestoreResult result;
};

// The runs that `repairRuns` would restore files of. Only while no process has the store's lock,
// all of them are interrupted.
std::vector<RunNumber> interruptedRuns(const RunStore& store);

// Reverts all interrupted runs, and completes an interrupted undo. Throws JournalError.
std::vector<RepairedRun> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                    const GoesOn& goesOn, const OnStep& onStep = {});

}  // namespace soca
