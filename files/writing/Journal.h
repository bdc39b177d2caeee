// The changes of one run, recorded so that they can be undone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/writing/Digest.h"
#include "files/writing/RecordFile.h"
#include "files/writing/RunState.h"

namespace soca {

// A journal is a folder with two files of records. `before` has the old bytes of all files that the
// run will change. `state` is how far the run and its undo have come.
//
//   before:  run, file, file, ..., begun
//   state:   RunState
//
// Both are made in a folder with another name, which is renamed when both are on the disk, before
// the first file is changed. So no journal lacks a byte that was not damaged: it is neither undone
// nor repaired then.

// A file before the run.
struct SavedFile {
  // Absolute, without links.
  std::string path;
  std::uint32_t mode = 0;
  // In nanoseconds since 1970.
  std::int64_t modificationTime = 0;
  Digest oldDigest;
  // The digest of the new file.
  Digest newDigest;
};

// The name of the new file beside the old one before it replaces that. `token` belongs to the run.
std::string temporaryPath(const std::string& path, std::string_view token, std::size_t number);

// The names of the folder of a journal before and after it is one: what is in a folder with such a
// name is not needed.
std::string newFolderOf(const std::string& folder);
std::string oldFolderOf(const std::string& folder);

// The journal of a current run. All members throw JournalError.
class JournalWriter {
 public:
  // The new folder of this one must exist and be empty.
  explicit JournalWriter(std::string folder);

  const std::string& token() const { return token_; }

  void save(const SavedFile& file, std::string_view oldBytes);
  // To be called once, after all files are added and before any file is changed.
  void begin();
  // Records the end of the run; the files in `left` were not changed.
  void finish(const FileNumbers& left);

 private:
  std::string folder_;
  std::string token_;
  RecordWriter before_;
  StateFile stateFile_;
  RunState state_;
  std::uint32_t count_ = 0;
  // The deepest folder that contains all files.
  std::string commonFolder_;
};

// The journal of a finished or interrupted run.
class Journal {
 public:
  // Throws JournalError if it cannot be read, is damaged, or was written by another version; but
  // does not read the saved bytes.
  explicit Journal(const std::string& folder);

  enum class StateType {
    // Files may have been changed or restored, and there may be temporary files beside them.
    interrupted,
    done,
    partlyUndone,
    undone,
  };
  StateType state() const;
  // Whether the run itself finished, regardless of an undo.
  bool wasDone() const { return state_.wasDone; }

  // In seconds since 1970.
  std::int64_t time() const { return time_; }
  const std::string& token() const { return token_; }
  const std::string& commonFolder() const { return commonFolder_; }

  const std::vector<SavedFile>& files() const { return files_; }
  // Throws JournalError if they are not those that were saved.
  std::string_view oldBytes(std::size_t number) const;
  // Whether all old bytes are those that were saved.
  bool hasIntactBytes() const;
  // The files that the run changed or may have changed; and those of them that are not yet
  // restored.
  const FileNumbers& changed() const { return changed_; }
  const FileNumbers& pending() const { return pending_; }

  // The files that a repair of the interrupted run has to restore.
  FileNumbers unfinished() const;

  // Record that the restoring of files begins, and that it ends, possibly without some files. Both
  // throw JournalError.
  void beginUndo(const FileNumbers& numbers);
  void endUndo(const FileNumbers& restored);

 private:
  void readBefore();
  void checkState() const;
  void findPending();

  RecordFile before_;
  StateFile stateFile_;
  RunState state_;
  std::int64_t time_ = 0;
  std::string token_;
  std::string commonFolder_;
  std::vector<SavedFile> files_;
  FileNumbers changed_;
  FileNumbers pending_;
};

// Whether the run in the folder finished, and an undo of it, if any, did too: then there is nothing
// to repair. Unlike opening the journal this does not read the list of files.
bool isSettled(const std::string& folder);

// Null if the journal cannot be used.
std::unique_ptr<Journal> openJournal(const std::string& folder);

// Why the run cannot be undone or repaired, from all bytes of its journal; empty if it can.
std::optional<std::string> findFault(const std::string& folder);

// The paths of the run's files, as far as they can be read even in a damaged journal.
std::vector<std::string> readablePaths(const std::string& folder);

// The new files that the interrupted run left beside the old ones, as far as its journal can be
// read; only regular files.
std::vector<std::string> leftTemporaries(const std::string& folder);

}  // namespace soca
