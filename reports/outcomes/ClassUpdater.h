// The update of one class, computed and checked but not yet shown or written.
#pragma once

#include <string>
#include <vector>

#include "cli/commands/StandardInput.h"
#include "cli/options/Options.h"
#include "conversions/Findings.h"
#include "files/targets/ClassRoots.h"
#include "files/targets/Targets.h"
#include "reports/FileNames.h"
#include "reports/outcomes/Failures.h"
#include "reports/outcomes/Outcome.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "soca/Updater.h"

namespace soca::cli {

// What to compute, and what of the outcome somebody wants to see; the rest is left empty.
struct UpdateWishes {
  UpdateMask rules = allFamilies;
  bool includeSuperclasses = false;
  bool diff = false;
  bool text = false;
  bool hints = false;
  bool newBytes = false;
  // The single replacements, and what tells which file they are for.
  bool edits = false;
  // The conversions that the edits belong to.
  bool conversions = false;
  FindingPlacesType places = FindingPlacesType::none;
  // A text that lies over the file of the class and is taken for it; null for none.
  const StandardInput* input = nullptr;
};

// What the options ask for, but for the diffs and the new bytes.
UpdateWishes makeWishes(const Options& options);

// May be used by several threads at once.
class ClassUpdater {
 public:
  // Both pointers must outlive this object.
  ClassUpdater(const ClassRoots* roots, const FileNames* names, UpdateWishes wishes)
      : roots_(roots), names_(names), wishes_(wishes), describer_(roots, names) {}

  // Never throws: what goes wrong becomes a failure of the target's class.
  TargetOutcome update(const Target& target) const;

 private:
  TargetOutcome updateClass(const Target& target) const;
  // Takes from the plan what is no longer needed once it was looked at.
  ClassOutcome makeOutcome(PlannedClass& planned, const FindingsListener& listener) const;
  // Fills in what there is only for a changed text.
  void checkNewText(PlannedClass& planned, ClassOutcome& outcome) const;
  fl::filesystem::FileState oldFileOf(const PlannedClass& planned, const std::string& path) const;
  // What only the bytes of the file tell.
  void addFile(const PlannedClass& planned, ClassOutcome& outcome) const;

  const ClassRoots* roots_;
  const FileNames* names_;
  UpdateWishes wishes_;
  FailureDescriber describer_;
};

}  // namespace soca::cli
