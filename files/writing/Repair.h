// Repairs what interrupted runs have left.
#pragma once

#include <vector>

#include "cli/terminal/Console.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

// Reverts all interrupted runs, completes an interrupted undo, and prints messages about both.
// Returns these runs. Throws JournalError.
std::vector<RunNumber> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                  Console& console, const GoesOn& goesOn);

}  // namespace soca::cli
