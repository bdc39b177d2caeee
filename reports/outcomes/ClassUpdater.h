// The update of one class, computed and checked but not yet printed or written.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "conversions/ClassUpdate.h"
#include "conversions/choice/ConversionChooser.h"
#include "conversions/passes/ClassPasses.h"
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
  // What each class has to do with others of the run.
  bool facts = false;
  // The identification of the file of a class with conversions.
  bool identity = false;
  // The lines of what changes and of what is reported, for which `conversions` are needed too. Not
  // as the service.
  bool hunks = false;
};

// The input of the computation.
struct UpdateRequest {
  // As the service, only the families count.
  ChoiceLimits limits;
  bool includeSuperclasses = false;
  // Whether the program leaves all decisions to the service, which makes all conversions of a class
  // or none.
  bool asService = false;
  // Whether the edits leave the texts tidy; not as the service.
  bool isTidy = false;
  OutcomeNeeds needs;
  // The file with an overlay text of this thread, which is not read from the disk. Null for none.
  const fl::filesystem::FileState* overlaidFile = nullptr;
};

// The text of a class before and after its update.
struct UpdatedText {
  const std::string* path;
  fl::ustring_view oldText;
  fl::ustring_view newText;
  // The state of the file when it was analysed, if that is known.
  const std::optional<fl::filesystem::FileState>* oldFile;
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

  // The same in passes that see other classes; `views` are the first passes that look at the class,
  // and the others see what the last of these sees. Not as the service.
  SingleUpdate updateInPasses(const std::string& className,
                              const std::vector<PassView>& views) const;

 private:
  // Sets the outcome, or a failure that concerns the class alone.
  void finishPlan(PlannedClass planned, const std::vector<PassView>* views,
                  SingleUpdate& single) const;
  SingleUpdate update(const std::string& className, const std::vector<PassView>* views) const;
  // Adds the failures, and what else depends on the target. If a file cannot be read for that, the
  // outcome is that failure alone.
  void complete(const Target& target, std::vector<Failure> failures, TargetOutcome& outcome) const;
  void addFailure(const Target& target, Failure failure, TargetOutcome& outcome) const;
  WordsType words() const { return request_.asService ? WordsType::service : WordsType::program; }
  bool isUndecided(const Failure& failure, const std::string& path) const;
  UpdateMask families() const { return request_.limits.rules.families; }
  // As the service. Moves from the plan what is not needed afterwards.
  ClassOutcome makeServiceOutcome(PlannedClass& planned) const;
  // Decides each conversion, in passes.
  ClassOutcome makeOutcome(PlannedClass planned, const std::vector<PassView>* views,
                           std::vector<PassRecord>& records) const;
  // All passes; `views` are null for a class alone.
  ClassPasses makePasses(PlannedClass planned, const PassNeeds& needs,
                         const std::vector<PassView>* views, PassFacts* facts,
                         std::vector<PassRecord>& records) const;
  PassNeeds passNeeds(const PlannedClass& planned) const;
  // Whether the file of the planned class is not the one for which conversions were selected. The
  // plan must be that of the text as it was read.
  bool isOutdated(const PlannedClass& planned) const;
  fl::filesystem::FileState oldFileOf(const UpdatedText& text) const;
  // Sets the fields that depend on the bytes of the file.
  void addFile(const UpdatedText& text, ClassOutcome& outcome) const;

  const ClassRoots* roots_;
  const FileNames* names_;
  UpdateRequest request_;
  FailureDescriber describer_;
};

}  // namespace soca
