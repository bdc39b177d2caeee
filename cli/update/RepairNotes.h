// The lock of the journals and the repair of interrupted runs, reported on the console.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "cli/terminal/Console.h"
#include "files/writing/Repair.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

// Takes the lock; prints a message if it has to wait. Returns no lock if `goesOn` ends the wait.
// Throws JournalError.
std::optional<RunStore::Lock> lockRuns(const RunStore& store, Console& console,
                                       const GoesOn& goesOn);

// Repairs all interrupted runs as long as `goesOn` allows it, and prints the result of each that is
// not one of `reported`. Throws JournalError.
std::vector<RepairedRun> repairAndReport(const RunStore& store, const RunStore::Lock& lock,
                                         Console& console, const GoesOn& goesOn,
                                         const std::vector<RepairedRun>& reported = {});

// Prints the runs that can be neither undone nor repaired. Throws JournalError.
void tellOfDamaged(const RunStore& store, Console& console);

// Prints that interrupted runs wait for their repair, which `what` begins with.
void tellOfInterrupted(const RunStore& store, std::string_view what, Console& console);

}  // namespace soca::cli
