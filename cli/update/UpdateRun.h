// The command `update`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <unordered_set>
#include <vector>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/Progress.h"
#include "cli/update/HeldClasses.h"
#include "cli/update/PageFile.h"
#include "cli/update/RootGuard.h"
#include "cli/update/SelectionNotes.h"
#include "cli/update/Stats.h"
#include "cli/update/WriteQueue.h"
#include "conversions/MethodChanges.h"
#include "files/targets/ClassRoots.h"
#include "files/targets/Git.h"
#include "files/targets/Targets.h"
#include "platform/paths/FileView.h"
#include "platform/runtime/ReadClasses.h"
#include "reports/ExitCodes.h"
#include "reports/Summary.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/ClassUpdater.h"
#include "reports/outcomes/SharedUpdates.h"
#include "reports/passes/RunPasses.h"
#include "reports/text/FileNames.h"

namespace soca::cli {

// Computes and checks the updates of all targets in several threads, and prints them in the order
// of the arguments. With `--write` the new files are stored until the last class is done; then all
// files are replaced.
class UpdateRun {
 public:
  // All three must outlive the run. Throws UsageError for arguments that are on no root, and for a
  // file that is no selection.
  UpdateRun(const Options* options, const ClassRoots* roots, Console* console);

  ExitCodeType run();
  // The run by which the written files can be undone; 0 if no file was written.
  RunNumber writtenRun() const { return queue_ ? queue_->result().run : 0; }

 private:
  void computeAll();
  // What the arguments select, each time from the first target.
  Targets makeTargets();
  // Reports the number of targets to the progress.
  void countTargets(const std::stop_token& stop, Progress& progress);
  // Both are called by several threads.
  TargetOutcome work(const Target& target);
  SingleUpdate updateAlone(const std::string& className);
  // Asks git, and prints the class into its data.
  void finishOutcome(ClassOutcome& outcome);
  // Refuses to change files that git could not restore; in a dry run only records that.
  void checkUncommitted(ClassOutcome& outcome);
  // Both are called in the order of the targets.
  void take(TargetOutcome& outcome);
  void takeClass(ClassOutcome& outcome);
  void print(const ClassOutcome& outcome);
  // The state of this thread for the work on a class, during its life.
  struct WorkScope {
    explicit WorkScope(UpdateRun* run)
        : view(run->view_), reads(run->options_->write ? &run->reads_ : nullptr) {}

    fl::filesystem::FileView::Scope view;
    sotarn::ReadClasses::Scope reads;
  };
  // Makes the passes of the classes that others of the run reach, and prints what was held back.
  void startPasses();
  void settle();
  // Called by several threads.
  SingleUpdate updateInPasses(const std::string& className, const std::vector<PassView>& views);
  // Replaces what is held of the class.
  void takeAgain(std::size_t number, SingleUpdate& update);
  void printSettled(const HeldClasses::Entry& entry);
  HeldClasses::Texts textsOf(const ClassOutcome& outcome) const;

  void addFailure(const Failure& failure);
  void passOver(const PassedOverFile& file);
  // Whether all classes are as they should be.
  bool hasNothingToDo() const;
  // Whether the run was to look at the classes of folders, and looked at none.
  bool lookedAtNothing() const;
  std::string nothingText() const;
  void writeAll();
  // Updates the classes again whose answers came from files that have changed since; they fail if
  // the files change once more. To be called under the lock for writing.
  void updateChangedAgain();
  // The queue's entries, of all or of some, that no longer belong to the files.
  std::vector<std::size_t> findChanged(const sotarn::ReadClasses& reads) const;
  std::vector<std::size_t> findChanged(const sotarn::ReadClasses& reads,
                                       std::vector<std::size_t> entries) const;
  void updateAgain(std::size_t entry);
  void failWriting(std::size_t entry, const std::string& reason);
  void takeWritten();
  void finish();
  // A number in a message.
  std::string shown(std::size_t number) const;
  void printNumbers();
  void printWarnings();
  std::string summaryText() const;
  ExitCodeType exitCode() const;

  const Options* options_;
  ConversionSelection selection_;
  const ClassRoots* roots_;
  Console* console_;
  // All results are computed from the state of the files before the run.
  fl::filesystem::FileView view_;
  // Only with `--write`.
  sotarn::ReadClasses reads_;
  FileNames names_;
  Git git_;
  Targets targets_;
  ReportOptions reportOptions_;
  ClassUpdater updater_;
  // Only with superclasses.
  SharedUpdates shared_;
  RootGuard guard_;
  PageFile page_;
  std::unique_ptr<UpdateReport> report_;
  SelectionNotes selectionNotes_;

  // Only for several classes that are decided, and not as the service.
  std::optional<RunPasses> passes_;
  HeldClasses held_;
  // Of the held classes that fail only in passes with others, by their numbers.
  std::map<std::size_t, Failure> heldFailures_;
  // The entries of the queue that others of the run reach.
  std::unordered_set<std::size_t> reachedEntries_;

  // Only with `--stats`.
  std::optional<Stats> stats_;
  // Whether changes that are not committed to git prevent the writing.
  bool asksGit_ = false;
  Summary summary_;
  MethodChanges methodChanges_;
  // The files that change: their inodes by their devices.
  std::map<std::uint64_t, std::unordered_set<std::uint64_t>> files_;
  // Only with `--write`.
  std::optional<WriteQueue> queue_;
  // Whether the writing finished, and the number of files that it omitted if it did not.
  bool isWritten_ = false;
  std::size_t leftOut_ = 0;
  // A fault that ends the whole run.
  std::string fatalError_;
};

}  // namespace soca::cli
