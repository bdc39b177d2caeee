// The results of a run in numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "reports/outcomes/Outcome.h"
#include "rules/RuleFamilies.h"

namespace soca {

// The part of one class in a summary.
struct ClassCounts {
  ClassCounts() = default;
  explicit ClassCounts(const ClassOutcome& outcome);

  bool isChanged = false;
  bool isRefused = false;
  bool changesAgain = false;
  bool isUncommitted = false;
  // The number of conversions of each kind, if it is changed.
  PerKind<std::uint32_t> conversions;
  // The short ids.
  std::vector<std::string> findings;
};

struct Summary {
  // The classes that the service processed, and those of them that change.
  std::size_t classes = 0;
  std::size_t changed = 0;
  std::size_t refused = 0;
  // The classes with a failure, and the folders that could not be read.
  std::size_t failed = 0;
  std::size_t skipped = 0;
  // The classes that were not looked at because a superclass was not found.
  std::size_t undecided = 0;
  std::size_t filesWithoutClass = 0;
  // The files that were named and passed over, those whose names are no class names, and those in
  // UTF-16.
  std::size_t passedOver = 0;
  std::size_t otherNames = 0;
  std::size_t utf16Files = 0;
  std::size_t changesAgain = 0;
  std::size_t findings = 0;
  // In a dry run, the classes that change and that `--write` would refuse.
  std::size_t uncommitted = 0;

  // The number of conversions of each kind in the classes that change.
  PerKind<std::size_t> conversions;
  // The number of findings and failures of each id, in its short form.
  std::map<std::string, std::size_t> findingsById;
  std::map<std::string, std::size_t> failuresById;

  void add(const ClassCounts& counts);
  // Takes back what `add` did.
  void remove(const ClassCounts& counts);
  void addFailure(const Failure& failure);
  void addPassedOver(PassedOverFile::Type type);
};

enum class TenseType { wouldChange, changed };

// One line without a line end: "looked at 15 classes: 12 would change, 3 stay as they are".
std::string formatSummary(const Summary& summary, TenseType tense);

// The lines after that one: conversions, findings and failures by kind, the most frequent first,
// each on lines of its own, if there are any. `width` is that of the screen, in columns.
std::string formatDetails(const Summary& summary, std::size_t width);

}  // namespace soca
