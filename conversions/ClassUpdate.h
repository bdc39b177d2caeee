// The update of one class, computed and checked.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "conversions/Finding.h"
#include "conversions/Findings.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "soca/Updater.h"

namespace soca {

// Methods that an update renames or deletes, by their names in UTF-8.
struct MethodNameChanges {
  std::vector<std::string> gained;
  std::vector<std::string> deleted;
};

// The first stage of an outcome: what the service makes of the class, and whether the program
// accepts it. Nothing in it depends on the bytes of the file.
struct ClassUpdate {
  std::string className;
  // Absolute.
  std::string file;
  // As the service returns it, and whether the text differs.
  bool updated = false;
  bool changed = false;
  std::vector<Finding> findings;
  PerFamily<std::size_t> editCounts;
  // Why the program does not accept the new text; empty if it does.
  std::string refusal;
  // Whether an update of the new text would change it again.
  bool changesAgain = false;
  MethodNameChanges methods;

  bool isRefused() const { return !refusal.empty(); }
  // Whether the file is to be replaced.
  bool hasNewText() const { return changed && !isRefused(); }
};

// What is needed of a plan after it was checked: the rest is freed before the new text is analysed.
struct PlanNeeds {
  bool analysis = false;
  bool actions = false;
};

// Describes the update of a planned class.
ClassUpdate describeUpdate(const PlannedClass& planned, const FindingsListener& listener,
                           FindingPlacesType places);

// Checks the new text of the class, which has to differ from the old one, and fills in what is only
// known afterwards: the refusal, or whether a second update changes it again and which methods
// change. Takes from the plan what is not needed any more.
void checkUpdate(PlannedClass& planned, UpdateMask rules, PlanNeeds needs, ClassUpdate& update);

}  // namespace soca
