// The repair of what interrupted runs have left.
#pragma once

#include <vector>

#include "files/writing/Restore.h"
#include "files/writing/RunStore.h"

namespace soca {

// A run that was interrupted, and what became of it.
struct RepairedRun {
  // `notBegun`: it had not changed a file; `takenBack`: what it had changed is put back, as far as
  // `result` says; `undoCompleted`: its undo had been interrupted, and is completed likewise.
  enum class Type { notBegun, takenBack, undoCompleted };
  RunNumber run = 0;
  Type type = Type::notBegun;
  RestoreResult result;
};

// Takes back all runs that were interrupted, and completes an undo that was. Throws JournalError.
std::vector<RepairedRun> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                    const GoesOn& goesOn);

}  // namespace soca
