// Restores the files that a run has written.
#pragma once

#include <string>
#include <vector>

#include "files/writing/Journal.h"
#include "files/writing/RunStore.h"

namespace soca {

// A file that was not restored, and the reason.
struct LeftFile {
  std::string path;
  std::string reason;
};

struct RestoreResult {
  // The files changed by the run that now are as they were before it, by their numbers in the
  // journal.
  FileNumbers restored;
  // The files that cannot be restored, usually because they were changed since, and the files that
  // could not be written.
  std::vector<LeftFile> changed;
  std::vector<LeftFile> failed;
  // Lines on restored files that are not quite as before.
  std::vector<std::string> warnings;
  bool isCutShort = false;
};

// Restores the state before an interrupted run: temporary files are deleted, and files get their
// old bytes, permissions and times. If `goesOn` returns false meanwhile, or a file could not be
// written, the journal stays as it is, so that the repair can be repeated.
//
// This and `undoRun` require the store's lock, so that no other process does the same, and throw
// JournalError.
RestoreResult repairRun(Journal& journal, const GoesOn& goesOn, const OnStep& onStep = {});

// Undoes a finished run, or a part of it: `numbers` are some of the pending files of the journal.
// Files that are left can be undone later.
RestoreResult undoRun(Journal& journal, const FileNumbers& numbers, const GoesOn& goesOn,
                      const OnStep& onStep = {});

// What `undoRun` would do, as far as the files show it. Needs no lock, and changes nothing.
RestoreResult previewUndo(const Journal& journal, const FileNumbers& numbers, const GoesOn& goesOn);

}  // namespace soca
