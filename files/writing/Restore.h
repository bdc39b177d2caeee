// Takes back what a run has written.
#pragma once

#include <string>
#include <vector>

#include "files/writing/Journal.h"
#include "files/writing/RunStore.h"

namespace soca {

// A file that was not put back, and why.
struct LeftFile {
  std::string path;
  std::string reason;
};

struct RestoreResult {
  // Files that the run had changed and that are now as they were before, by their numbers in the
  // journal.
  FileNumbers restored;
  // Files that can't be put back, most often since somebody else has changed them, and files whose
  // writing failed.
  std::vector<LeftFile> changed;
  std::vector<LeftFile> failed;
  bool isCutShort = false;
};

// What an interrupted run has left becomes as it was: temporary files go away, and files get their
// old bytes, permissions and times. Nothing of the run is taken back if `goesOn` says no in
// between, or if a file could not be written: then it is to be tried again.
//
// Both need the store's lock, so that nobody else is at it, and throw JournalError.
RestoreResult repairRun(Journal& journal, const GoesOn& goesOn);

// Takes back a run that is done, or the rest of it. What is left can be undone another time.
RestoreResult undoRun(Journal& journal, const GoesOn& goesOn);

}  // namespace soca
