// The update of one class, computed and checked but not yet printed or written.
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

// The parts of the outcome to compute; the others stay empty.
struct UpdateWishes {
  UpdateMask rules = allFamilies;
  bool includeSuperclasses = false;
  bool diff = false;
  bool text = false;
  bool hints = false;
  bool newBytes = false;
  // The single replacements, and the identification of their file.
  bool edits = false;
  // The conversions that the edits belong to.
  bool conversions = false;
  FindingPlacesType places = FindingPlacesType::none;
  // An overlay text for the file of the class; null for none.
  const StandardInput* input = nullptr;
};

// The wishes of the options, without the diffs and the new bytes.
UpdateWishes makeWishes(const Options& options);

// Safe to use from several threads.
class ClassUpdater {
 public:
  // Both pointers must outlive this object.
  ClassUpdater(const ClassRoots* roots, const FileNames* names, UpdateWishes wishes)
      : roots_(roots), names_(names), wishes_(wishes), describer_(roots, names) {}

  // Never throws: any fault becomes a failure of the target's class.
  TargetOutcome update(const Target& target) const;

 private:
  TargetOutcome updateClass(const Target& target) const;
  // Moves from the plan what is not needed afterwards.
  ClassOutcome makeOutcome(PlannedClass& planned, const FindingsListener& listener) const;
  // Sets the fields that are only for a changed text.
  void checkNewText(PlannedClass& planned, ClassOutcome& outcome) const;
  fl::filesystem::FileState oldFileOf(const PlannedClass& planned, const std::string& path) const;
  // Sets the fields that depend on the bytes of the file.
  void addFile(const PlannedClass& planned, ClassOutcome& outcome) const;

  const ClassRoots* roots_;
  const FileNames* names_;
  UpdateWishes wishes_;
  FailureDescriber describer_;
};

}  // namespace soca::cli
