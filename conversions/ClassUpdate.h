// The update of one class, computed and checked.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "conversions/Conversions.h"
#include "conversions/Finding.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "soca/Updater.h"

namespace soca {

// Methods that an update renames or deletes, by their names in UTF-8.
struct MethodNameChanges {
  std::vector<std::string> gained;
  std::vector<std::string> deleted;
};

// The first stage of an outcome: the result of the service, and whether the program accepts it.
// Does not depend on the bytes of the file.
struct ClassUpdate {
  std::string className;
  // Absolute.
  std::string file;
  // The result of the service, and whether the text differs.
  bool updated = false;
  bool changed = false;
  // Whether the text begins with a byte order mark, which the columns of the first line count.
  bool hasByteOrderMark = false;
  std::vector<Finding> findings;
  // The conversions that the new text has, by kind.
  PerKind<std::size_t> conversionCounts;
  // The conversions that were found and are not made, by kind.
  PerKind<std::size_t> leftOutCounts;
  // Those that are not made, or for which lines were laid apart; if conversions are requested, all.
  std::vector<Conversion> conversions;
  // The reason why the program refuses the new text; empty if it does not.
  std::string refusal;
  // Whether an update of the new text would change it again.
  bool changesAgain = false;
  MethodNameChanges methods;

  bool isRefused() const { return !refusal.empty(); }
  // Whether the file is to be replaced.
  bool hasNewText() const { return changed && !isRefused(); }
  // Drops the descriptions of the conversions that are made.
  void forgetMade() {
    std::erase_if(conversions, [](const Conversion& each) { return each.isMade(); });
  }
};

// The parts of a plan to keep after the check: the rest is freed before the new text is analysed.
struct PlanNeeds {
  bool analysis = false;
  bool actions = false;
};

// Describes the update of a planned class.
ClassUpdate describeUpdate(const PlannedClass& planned, FindingPlacesType places);

// Checks the new text of the class, which must differ from the old one, and sets the results: the
// refusal, or whether a second update changes the text again and which methods change. Moves from
// the plan what is not needed afterwards.
void checkUpdate(PlannedClass& planned, UpdateMask rules, PlanNeeds needs, ClassUpdate& update);

}  // namespace soca
