// The writing part of a run: all files at once, with a journal.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "files/writing/Digest.h"
#include "files/writing/RunStore.h"
#include "platform/paths/SourceReader.h"

namespace soca {

// A file that is to be replaced.
struct FileChange {
  // Absolute; links are followed.
  std::string path;
  // Of the file that the new bytes were computed from.
  fl::filesystem::FileStamp stamp;
  Digest newDigest;
};

// Changes are told apart by their numbers, from 0.
struct BatchResult {
  // By which what was written can be taken back; 0 if nothing was.
  RunNumber run = 0;
  std::vector<bool> isWritten;
  std::size_t writtenCount = 0;
  // The reasons for those that could not be written.
  std::map<std::size_t, std::string> failures;
  // Whether it ended before all that can be written was.
  bool isCutShort = false;
  // What went wrong behind the last file; empty if nothing did.
  std::string problem;
};

// Replaces the files. `newBytes` gives the new bytes of the change with a number; it is asked
// once for each and in their order. `goesOn` is asked in front of each step; when it says no, the
// step and all others are left out, and every file is the old one or the new one.
//
// If the process dies meanwhile, `repairRuns` puts back what it has written so far. Throws
// JournalError and what `newBytes` throws.
BatchResult writeFiles(const RunStore& store, const RunStore::Lock& lock,
                       const std::vector<FileChange>& changes,
                       const std::function<std::string(std::size_t)>& newBytes,
                       const GoesOn& goesOn);

}  // namespace soca
