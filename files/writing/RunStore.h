// The journals of the user's runs.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/writing/Descriptor.h"

namespace soca {

// Called between two steps; no further step begins once it returns false.
using GoesOn = std::function<bool()>;

// The steps of writing or restoring files, each done for all files before the next one begins:
// their old bytes are saved, the new files are written beside them, and replace them.
enum class StepType { saving, staging, replacing };

// Called after each file of a step, with the number of files that the step has. Must not throw.
using OnStep = std::function<void(StepType step, std::size_t count)>;

using RunNumber = unsigned;

// One folder for each run, named by its number; the newest has the highest. Runs that write or
// restore files hold the lock meanwhile, so that while it is held every unfinished run is an
// interrupted one.
class RunStore {
 public:
  // Throws JournalError if there is no folder for it. So do all members if the folder is not safe
  // to be used; one that others can use is closed for them.
  RunStore();

  // The right to change files and journals; only one of the user's processes can hold it.
  class Lock {
    friend class RunStore;
    explicit Lock(Descriptor file) : file_(std::move(file)) {}
    Descriptor file_;
  };
  // Creates the store if it does not exist. Waits for the lock while `goesOn` returns true;
  // otherwise returns no lock. `onWait` is called once before it waits. Throws JournalError.
  std::optional<Lock> lock(const std::function<void()>& onWait, const GoesOn& goesOn) const;
  // Whether some process has the lock.
  bool isLocked() const;

  // In ascending order.
  std::vector<RunNumber> runs() const;
  std::string folderOf(RunNumber run) const;

  // A new run, with an empty folder that becomes that of the run later. Throws JournalError, also
  // if no higher number is left.
  RunNumber add(const Lock& lock) const;
  // A file or folder that could not be deleted, and why.
  struct Rest {
    std::string path;
    std::string reason;
  };
  // Deletes the run. Returns what is left; even then the run may be gone from `runs`.
  std::vector<Rest> remove(const Lock& lock, RunNumber run) const;
  // Deletes what is left of removed runs and of runs that never began. Returns the latter.
  std::vector<RunNumber> removeRests(const Lock& lock) const;
  // Deletes the oldest runs beyond the bounds, but not the newest one, and none that is interrupted
  // or damaged.
  void prune(const Lock& lock) const;

  // The bounds: the number of runs, and the total size of their journals in bytes.
  static constexpr std::size_t mostRuns = 20;
  static constexpr std::uint64_t mostBytes = std::uint64_t{1} << 30U;

 private:
  void secure() const;
  // Of the entries in the folder of the runs with the suffix.
  std::vector<RunNumber> numbersOf(std::string_view suffix) const;

  std::string folder_;
};

// The number in the text; empty if it is not a number.
std::optional<RunNumber> parseRunNumber(std::string_view text);

}  // namespace soca
