// The update of one class, computed and checked but not yet printed or written.
#pragma once

#include <string>

#include "conversions/ClassUpdate.h"
#include "files/targets/ClassRoots.h"
#include "files/targets/Targets.h"
#include "platform/paths/SourceReader.h"
#include "reports/outcomes/Failures.h"
#include "reports/outcomes/Outcome.h"
#include "reports/outcomes/SharedUpdates.h"
#include "reports/text/FileNames.h"
#include "service/UpdatePlan.h"
#include "soca/Updater.h"

namespace soca {

// The parts of an outcome to compute; the others stay empty.
struct OutcomeNeeds {
  bool diff = false;
  bool text = false;
  bool hints = false;
  bool newBytes = false;
  // The single replacements, and the identification of their file.
  bool edits = false;
  // The conversions, and the edits that make each of them alone, for which `edits` are needed too.
  bool conversions = false;
  bool editsOfEach = false;
  FindingPlacesType places = FindingPlacesType::none;
};

// The input of the computation.
struct UpdateRequest {
  UpdateMask rules = allFamilies;
  bool includeSuperclasses = false;
  // Whether the program leaves all decisions on superclasses to the service.
  bool asService = false;
  OutcomeNeeds needs;
  // The file with an overlay text of this thread, which is not read from the disk. Null for none.
  const fl::filesystem::FileState* overlaidFile = nullptr;
};

// Safe to use from several threads.
class ClassUpdater {
 public:
  // Both pointers must outlive this object.
  ClassUpdater(const ClassRoots* roots, const FileNames* names, UpdateRequest request)
      : roots_(roots), names_(names), request_(request), describer_(roots, names, words()) {}

  // All three turn any fault into a failure, except std::bad_alloc, which they throw.

  // The target's class without its superclasses.
  TargetOutcome update(const Target& target) const;

  // The target's class with its superclasses, which the function of `shared` must update with
  // `updateAlone`. The outcomes stay in `shared`.
  TargetOutcome update(const Target& target, SharedUpdates& shared) const;

  // The class without its superclasses, but with their names if they are included.
  SingleUpdate updateAlone(const std::string& className) const;

 private:
  // Sets the outcome, or a failure that concerns the class alone.
  void finishPlan(PlannedClass& planned, SingleUpdate& single) const;
  // Adds the failures, and what else depends on the target. If a file cannot be read for that, the
  // outcome is that failure alone.
  void complete(const Target& target, std::vector<Failure> failures, TargetOutcome& outcome) const;
  void addFailure(const Target& target, Failure failure, TargetOutcome& outcome) const;
  WordsType words() const { return request_.asService ? WordsType::service : WordsType::program; }
  bool isUndecided(const Failure& failure, const std::string& path) const;
  // Refuses the update if the new list of superclasses may be wrong.
  static void checkSuperClasses(const PlannedClass& planned, ClassOutcome& outcome);
  // Moves from the plan what is not needed afterwards.
  ClassOutcome makeOutcome(PlannedClass& planned) const;
  fl::filesystem::FileState oldFileOf(const PlannedClass& planned, const std::string& path) const;
  // Sets the fields that depend on the bytes of the file.
  void addFile(const PlannedClass& planned, ClassOutcome& outcome) const;

  const ClassRoots* roots_;
  const FileNames* names_;
  UpdateRequest request_;
  FailureDescriber describer_;
};

}  // namespace soca
