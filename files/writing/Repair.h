// Repairs interrupted runs.
#pragma once

#include <string>
#include <vector>

#include "files/writing/Restore.h"
#include "files/writing/RunStore.h"

namespace soca {

// An interrupted run, and the result of its repair.
struct RepairedRun {
  // `notBegun`: it had not changed any file, and is gone; `takenBack`: its files were restored,
  // with the exceptions in `result`; `undoCompleted`: its undo was interrupted, and was completed
  // in the same way.
  enum class Type { notBegun, takenBack, undoCompleted };
  RunNumber run = 0;
  Type type = Type::notBegun;
  RestoreResult result;
};

// The runs that `repairRuns` would restore files of. Only while no process has the store's lock,
// all of them are interrupted.
std::vector<RunNumber> interruptedRuns(const RunStore& store);

// A run whose journal cannot be used, as a whole or for some files, and why.
struct DamagedRun {
  RunNumber run = 0;
  std::string fault;
};

// Reads all bytes of all journals. Throws JournalError.
std::vector<DamagedRun> findDamagedRuns(const RunStore& store);

// Reverts all interrupted runs, and completes an interrupted undo, unless their journals are
// damaged. Throws JournalError.
std::vector<RepairedRun> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                    const GoesOn& goesOn, const OnStep& onStep = {});

}  // namespace soca
