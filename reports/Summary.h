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

// What the rows of the numbers are: kinds of conversions, reasons for leaving out, or packages.
enum class GroupType { kinds, reasons, packages };

// Conversions of a class that are left out for the same reason, which is a full id. The reason is
// empty for those of a refused class.
struct LeftOutCount {
  std::string reason;
  ConversionKindType kind = ConversionKindType::mixins;
  std::uint32_t count = 0;
};

// The part of one class in a summary.
struct ClassCounts {
  ClassCounts() = default;
  explicit ClassCounts(const ClassOutcome& outcome);

  // Empty for a class in no package.
  std::string package;
  bool isChanged = false;
  bool isRefused = false;
  bool changesAgain = false;
  bool isUncommitted = false;
  // The number of conversions of each kind that are made, if it is changed.
  PerKind<std::uint32_t> conversions;
  std::vector<LeftOutCount> leftOut;
  // The short ids.
  std::vector<std::string> findings;
};

// The counts as a text, and back.
std::string pack(const ClassCounts& counts);
ClassCounts unpackCounts(const std::string& text);

// The part of one package.
struct PackageCounts {
  // The classes that were looked at, and those that failed or are undecided.
  std::size_t classes = 0;
  // Conversions.
  std::size_t made = 0;
  std::size_t leftOut = 0;
  std::size_t findings = 0;
  // The classes that failed, were refused or are undecided.
  std::size_t failed = 0;
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

  // The number of conversions of each kind that are made, in the classes that change.
  PerKind<std::size_t> conversions;
  // The number of those that were found and are not made, by the reasons, as in LeftOutCount.
  std::map<std::string, PerKind<std::size_t>> leftOut;
  // The number of findings and classes of each id, in its short form.
  std::map<std::string, std::size_t> findingsById;
  std::map<std::string, std::size_t> failuresById;
  std::map<std::string, std::size_t> skippedById;
  // Only if they are counted: of a large tree there may be many.
  bool countsPackages = false;
  std::map<std::string, PackageCounts> packages;

  void add(const ClassCounts& counts);
  // Takes back what `add` did.
  void remove(const ClassCounts& counts);
  // Takes back the conversions of a class that was not written.
  void removeConversions(const ClassCounts& counts);
  // Takes back that such a class was looked at and changes, but not its findings.
  void removeUnwritten(const ClassCounts& counts);
  void addFailure(const Failure& failure);
  void addSkipped(const Failure& failure);
  void addUndecided(const Failure& failure);
  void addPassedOver(PassedOverFile::Type type);

  // The conversions that are left out of classes that are not refused.
  std::size_t leftOutCount() const;

 private:
  void addToPackage(const ClassCounts& counts);
  // For a failure that names a class, if packages are counted.
  void addToPackage(const Failure& failure);
};

}  // namespace soca
