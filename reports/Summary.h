// What a run came to, in numbers.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "reports/outcomes/Outcome.h"
#include "rules/RuleFamilies.h"

namespace soca {

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

  // Of the classes that change, how many edits each rule family makes.
  PerFamily<std::size_t> conversions;
  // How many findings and failures there are of each id, in its short form.
  std::map<std::string, std::size_t> findingsById;
  std::map<std::string, std::size_t> failuresById;

  void add(const ClassOutcome& outcome);
  void addFailure(const Failure& failure);
};

enum class TenseType { wouldChange, changed };

// One line without a line end: "looked at 15 classes: 12 would change, 3 stay as they are".
std::string formatSummary(const Summary& summary, TenseType tense);

// What stands below that line: conversions, findings and failures by their kinds, the most frequent
// first, each in lines of their own, if there are any. `width` is that of the screen, in columns.
std::string formatDetails(const Summary& summary, std::size_t width);

}  // namespace soca
