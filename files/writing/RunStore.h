// The journals of the user's runs.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/writing/Descriptor.h"

namespace soca {

// Asked between two steps; nothing more is begun once it says no.
using GoesOn = std::function<bool()>;

using RunNumber = unsigned;

// One folder for each run, named by its number; the newest has the greatest. Runs that write or put
// back hold the lock while they do, so that under it every run that has no end was interrupted.
class RunStore {
 public:
  // Throws JournalError if there is no place for it.
  RunStore();

  // The right to change files and journals; whoever holds it is the only one of the user's
  // processes that does.
  class Lock {
    friend class RunStore;
    explicit Lock(Descriptor file) : file_(std::move(file)) {}
    Descriptor file_;
  };
  // Makes the store if it does not exist. Waits for the lock as long as `goesOn` returns true, and
  // returns nothing after that; `onWait` is called once before it waits. Throws JournalError.
  std::optional<Lock> lock(const std::function<void()>& onWait, const GoesOn& goesOn) const;
  // Whether some process has the lock.
  bool isLocked() const;

  // In ascending order.
  std::vector<RunNumber> runs() const;
  std::string folderOf(RunNumber run) const;

  // A new run with an empty folder. Throws JournalError.
  RunNumber add(const Lock& lock) const;
  // Takes the run's folder away, as far as that can be done.
  void remove(const Lock& lock, RunNumber run) const;
  // Removes the oldest runs beyond the bounds, but neither the newest nor interrupted ones.
  void prune(const Lock& lock) const;

  // The bounds: so many runs, whose journals take no more than so many bytes together.
  static constexpr std::size_t mostRuns = 20;
  static constexpr std::uint64_t mostBytes = std::uint64_t{1} << 30U;

 private:
  std::string folder_;
};

// The number that the text is; nothing if it is none.
std::optional<RunNumber> parseRunNumber(std::string_view text);

}  // namespace soca
