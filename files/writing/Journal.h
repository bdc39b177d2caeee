// The changes of one run, recorded so that they can be undone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "files/writing/Digest.h"
#include "files/writing/RecordFile.h"

namespace soca {

// A journal is a folder with two files of records. `before` has the old bytes of all files that the
// run will change, and is on the disk before the first of them, or anything beside them, is
// changed. `state` records the progress of the run and of its undo:
//
//   before:  run, file, file, ..., begun
//   state:   [done [undoing undone]...]
//
// Without `begun`, no file was changed. With `begun` and without `done`, the run was interrupted;
// the undo was interrupted if there is `undoing` without a following `undone`.

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

// Files by their numbers, from 0 in the order in which they were saved.
using FileNumbers = std::vector<std::uint32_t>;

// The name of the new file beside the old one before it replaces that. `token` belongs to the run.
std::string temporaryPath(const std::string& path, std::string_view token, std::size_t number);

// The journal of a current run. All members throw JournalError.
class JournalWriter {
 public:
  // The folder must exist, be empty, and outlive the journal.
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
  RecordWriter state_;
  std::uint32_t count_ = 0;
  // The deepest folder that contains all files.
  std::string commonFolder_;
};

// The journal of a finished or interrupted run.
class Journal {
 public:
  // Throws JournalError if it cannot be read. A journal that is torn by a crash can be read.
  explicit Journal(const std::string& folder);

  enum class StateType {
    // No file was changed.
    notBegun,
    // Files may have been changed, and there may be temporary files beside them.
    interrupted,
    done,
    partlyUndone,
    undone,
    // The disk has lost data that an undo of the run needs.
    damaged,
  };
  StateType state() const { return state_; }
  // Whether the run itself finished, regardless of an undo.
  bool wasDone() const { return wasDone_; }
  // Whether it is the rest of a journal whose removal was interrupted.
  bool isRemainder() const { return isRemainder_; }

  // In seconds since 1970.
  std::int64_t time() const { return time_; }
  const std::string& token() const { return token_; }
  const std::string& commonFolder() const { return commonFolder_; }

  const std::vector<SavedFile>& files() const { return files_; }
  // Throws JournalError if they are not those that were saved.
  std::string_view oldBytes(std::size_t number) const;
  // The files that the run changed or may have changed; and those of them that are not yet
  // restored.
  const FileNumbers& changed() const { return changed_; }
  const FileNumbers& pending() const { return pending_; }

  // Record that the restoring of files begins, and that it ends, possibly without some files. Both
  // throw JournalError.
  void beginUndo();
  void endUndo(const FileNumbers& restored);

 private:
  void readBefore();
  void readState();
  void addState(std::uint32_t type, std::string_view fields);
  void dropPending(const FileNumbers& numbers);

  std::string statePath_;
  RecordFile before_;
  // The number of intact bytes of the other file.
  std::uint64_t stateSize_ = 0;
  StateType state_ = StateType::notBegun;
  std::int64_t time_ = 0;
  std::string token_;
  std::string commonFolder_;
  bool hasBegun_ = false;
  bool wasDone_ = false;
  bool isRemainder_ = false;
  std::vector<SavedFile> files_;
  FileNumbers changed_;
  FileNumbers pending_;
};

// Whether the run in the folder finished, and an undo of it, if any, did too: then there is nothing
// to repair. Unlike opening the journal this does not read the saved bytes.
bool isSettled(const std::string& folder);

// Null if the journal cannot be read.
std::unique_ptr<Journal> openJournal(const std::string& folder);

}  // namespace soca
