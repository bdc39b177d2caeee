// How far a run and its undo have come, on the disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "files/writing/RecordFile.h"

namespace soca {

// Files by their numbers, from 0 in the order in which they were saved.
using FileNumbers = std::vector<std::uint32_t>;

struct RunState {
  // `running` and `undoing` are those of an interrupted run if no process has the store's lock.
  enum class StageType : std::uint32_t { running = 1, settled, undoing };

  StageType stage = StageType::running;
  // Whether the run itself finished, regardless of an undo.
  bool wasDone = false;
  // Those of the journal's other file: a name that both have, and its size in bytes.
  std::string token;
  std::uint64_t beforeSize = 0;
  // In ascending order: the files that the run did not change, those that were restored, and those
  // that a current undo is to restore.
  FileNumbers left;
  FileNumbers restored;
  FileNumbers undoing;
};

// To be changed with the form of the records of either file.
inline constexpr std::uint32_t journalVersion = 2;

// Writes the file `state` of a journal. It is replaced as a whole, so that it is never torn: one
// that lacks a byte was damaged. All members throw JournalError.
class StateFile {
 public:
  explicit StateFile(std::string folder) : folder_(std::move(folder)) {}

  // Reserves space on the disk for the next state, with as many numbers of files.
  void reserve(std::size_t numbers);
  // The state is on the disk after this.
  void write(const RunState& state);
  // After this the file is in another folder.
  void moveTo(std::string folder) { folder_ = std::move(folder); }

 private:
  std::string newPath() const { return folder_ + "/state.new"; }

  std::string folder_;
  std::unique_ptr<RecordWriter> next_;
};

// Throws JournalError if the file is missing or damaged.
RunState readState(const std::string& folder);

}  // namespace soca
