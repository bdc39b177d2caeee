// Writes all files of a run together, with a journal.
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

// A file to be replaced.
struct FileChange {
  // Absolute; links are followed.
  std::string path;
  // The stamp of the file from which the new bytes were computed.
  fl::filesystem::FileStamp stamp;
  Digest newDigest;
};

// Changes are identified by their numbers, from 0.
struct BatchResult {
  // The run by which the changes can be undone; 0 if no file was written.
  RunNumber run = 0;
  std::vector<bool> isWritten;
  std::size_t writtenCount = 0;
  // The reasons for the files that could not be written.
  std::map<std::size_t, std::string> failures;
  // Whether it stopped before all possible files were written.
  bool isCutShort = false;
  // Lines on written files that are not quite as before.
  std::vector<std::string> warnings;
  // A fault after the last file; empty if there was none.
  std::string problem;
};

// Replaces the files. `newBytes` returns the new bytes of the change with a number; it is called
// once for each, in order. `goesOn` is called before each step; if it returns false, that step and
// all later ones are omitted, and every file is either the old one or the new one.
//
// If the process is killed meanwhile, `repairRuns` restores what it has written. Throws
// JournalError and the exceptions of `newBytes`.
BatchResult writeFiles(const RunStore& store, const RunStore::Lock& lock,
                       const std::vector<FileChange>& changes,
                       const std::function<std::string(std::size_t)>& newBytes,
                       const GoesOn& goesOn, const OnStep& onStep = {});

}  // namespace soca
