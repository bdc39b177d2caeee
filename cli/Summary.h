// What a run came to, in numbers.
#pragma once

#include <cstddef>
#include <string>

#include "cli/Outcome.h"

namespace soca::cli {

struct Summary {
  // Classes that the service updated or left alone, and those of them that change.
  std::size_t classes = 0;
  std::size_t changed = 0;
  std::size_t refused = 0;
  // Classes with a failure, and folders that could not be read.
  std::size_t failed = 0;
  std::size_t skipped = 0;
  std::size_t filesWithoutClass = 0;
  std::size_t changesAgain = 0;
  std::size_t findings = 0;
  // Of a dry run, the classes that change and that `--write` would refuse.
  std::size_t uncommitted = 0;

  void add(const ClassOutcome& outcome);
};

enum class TenseType { wouldChange, changed };

// One line without a line end: "looked at 15 classes: 12 would change, 3 stay as they are".
std::string formatSummary(const Summary& summary, TenseType tense);

}  // namespace soca::cli
