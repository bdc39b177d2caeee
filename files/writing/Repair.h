// Puts right what interrupted runs have left.
#pragma once

#include <vector>

#include "cli/terminal/Console.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

// Takes back all runs that were interrupted, completes an undo that was, and says so. Gives the
// runs in question. Throws JournalError.
std::vector<RunNumber> repairRuns(const RunStore& store, const RunStore::Lock& lock,
                                  Console& console, const GoesOn& goesOn);

}  // namespace soca::cli
