// The lock of the journals and the repair of interrupted runs, reported on the console.
#pragma once

#include <optional>
#include <vector>

#include "cli/terminal/Console.h"
#include "files/writing/Repair.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

// Takes the lock; while it waits, the console says so. Nothing after an interrupt. Throws
// JournalError.
std::optional<RunStore::Lock> lockRuns(const RunStore& store, Console& console);

// Repairs all interrupted runs, and prints what became of each. Returns the runs. Throws
// JournalError.
std::vector<RunNumber> repairAndReport(const RunStore& store, const RunStore::Lock& lock,
                                       Console& console);

}  // namespace soca::cli
