// What one run changes, kept so that it can be taken back.
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
// run is about to change, and is on the disk before the first of them, or anything beside them, is
// touched. `state` says how far the run, and what took it back, came:
//
//   before:  run, file, file, ..., begun
//   state:   [done [undoing undone]...]
//
// Without `begun`, nothing was touched. With it and without `done`, the run was interrupted; the
// same with `undoing` and no `undone` behind it.

// A file as it was before the run.
struct SavedFile {
  // Absolute, without links.
  std::string path;
  std::uint32_t mode = 0;
  // In nanoseconds since 1970.
  std::int64_t modificationTime = 0;
  Digest oldDigest;
  // Of what the run makes of it.
  Digest newDigest;
};

// Files by their numbers, from 0 in the order in which they were saved.
using FileNumbers = std::vector<std::uint32_t>;

// The name, beside the file, of the new file that takes its place. `token` belongs to the run.
std::string temporaryPath(const std::string& path, std::string_view token, std::size_t number);

// The journal of a run that is under way. All members throw JournalError.
class JournalWriter {
 public:
  // The folder exists, is empty, and outlives the journal.
  explicit JournalWriter(std::string folder);

  const std::string& token() const { return token_; }

  void save(const SavedFile& file, std::string_view oldBytes);
  // Has to come, once, behind all files and before anything is touched.
  void begin();
  // Everything has happened, but that the run left these files as they were.
  void finish(const FileNumbers& left);

 private:
  std::string folder_;
  std::string token_;
  RecordWriter before_;
  RecordWriter state_;
  std::uint32_t count_ = 0;
  // The deepest folder that all files are in.
  std::string commonFolder_;
};

// The journal of a run that is over.
class Journal {
 public:
  // Throws JournalError if it can't be read. One that a crash has torn can.
  explicit Journal(const std::string& folder);

  enum class StateType {
    // Nothing was touched.
    notBegun,
    // Files may have been changed, and temporary files may lie beside them.
    interrupted,
    done,
    partlyUndone,
    undone,
    // The disk has not kept what is needed to take the run back.
    damaged,
  };
  StateType state() const { return state_; }
  // Whether the run itself came to its end, whatever became of an undo of it.
  bool wasDone() const { return wasDone_; }
  // Whether it is what was left of a journal when its removal was cut short.
  bool isRemainder() const { return isRemainder_; }

  // In seconds since 1970.
  std::int64_t time() const { return time_; }
  const std::string& token() const { return token_; }
  const std::string& commonFolder() const { return commonFolder_; }

  const std::vector<SavedFile>& files() const { return files_; }
  // Throws JournalError if they are not what was saved.
  std::string_view oldBytes(std::size_t number) const;
  // The files that the run changed, or may have changed; and those of them that are not put back.
  std::size_t changedCount() const { return changedCount_; }
  const FileNumbers& pending() const { return pending_; }

  // From now on files are put back; and an end of it, which may leave some. Both throw
  // JournalError.
  void beginUndo();
  void endUndo(const FileNumbers& restored);

 private:
  void readBefore();
  void readState();
  void addState(std::uint32_t type, std::string_view fields);
  void dropPending(const FileNumbers& numbers);

  std::string statePath_;
  RecordFile before_;
  // How much of the other file is whole.
  std::uint64_t stateSize_ = 0;
  StateType state_ = StateType::notBegun;
  std::int64_t time_ = 0;
  std::string token_;
  std::string commonFolder_;
  bool hasBegun_ = false;
  bool wasDone_ = false;
  bool isRemainder_ = false;
  std::vector<SavedFile> files_;
  std::size_t changedCount_ = 0;
  FileNumbers pending_;
};

// Whether the run in the folder came to an end, and so did an undo of it if there was one: then
// there is nothing to repair. Unlike opening the journal this does not read what was saved.
bool isSettled(const std::string& folder);

// Null if the journal can't be read.
std::unique_ptr<Journal> openJournal(const std::string& folder);

}  // namespace soca
