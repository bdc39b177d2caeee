#include "cli/commands/Unresolved.h"

#include <fmt/core.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/terminal/Signals.h"
#include "cli/update/RootGuard.h"
#include "conversions/superclasses/Ancestry.h"
#include "files/targets/Git.h"
#include "files/targets/Targets.h"
#include "platform/paths/FileView.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
#include "reports/FailureText.h"
#include "reports/RootText.h"
#include "reports/formats/ClassTableText.h"
#include "reports/outcomes/ClassUpdater.h"
#include "reports/outcomes/FileVerdict.h"
#include "reports/outcomes/Outcome.h"
#include "reports/passes/OrderedWorkers.h"
#include "reports/text/FileNames.h"

namespace soca::cli {
namespace {

// What one target needs.
struct Needs {
  std::vector<Ancestry::Missing> missing;
  // What an update would report of a target that could not be looked at, and the parts for the root
  // guard.
  TargetOutcome outcome;
  bool isClass = false;
};

// A superclass that is not found.
struct Unresolved {
  bool isPFile = false;
  std::set<std::string> namedBy;
};

class UnresolvedRun {
 public:
  UnresolvedRun(const Options* options, const ClassRoots* roots, Console* console)
      : options_(options),
        console_(console),
        names_(roots),
        targets_(roots, options->arguments, WalkType::filtered, &git_,
                 OtherFilesType::arePassedOver),
        updater_(roots, &names_, {}),
        guard_(options, roots, &names_, &targets_.namedFolders()) {}

  ExitCodeType run() {
    collect();
    if (wasInterrupted()) return interruptExitCode();
    guard_.look(false);
    if (options_->format->isForPeople) {
      printList();
    } else {
      printTable();
    }
    if (!options_->quiet) guard_.printNote(*console_);
    if (lookedAtNothing()) {
      const auto& named = targets_.namedFolders();
      console_->complain(
          hasFiles_ ? fmt::format("no file in {} holds a class", listFolders(named, names_))
                    : describeNoClassFiles(named, names_));
      return ExitCodeType::failed;
    }
    guard_.printSuggestion(*console_);
    return hasFailed_ || guard_.stopsTheRun() ? ExitCodeType::failed : ExitCodeType::done;
  }

 private:
  void collect() {
    const auto next = [this]() -> std::optional<Target> {
      if (wasInterrupted()) return std::nullopt;
      return targets_.next();
    };
    const auto work = [this](const Target& target) {
      const fl::filesystem::FileView::Scope scope(view_);
      return needsOf(target);
    };
    const auto consume = [this](const Needs& needs) {
      take(needs);
      return !wasInterrupted();
    };
    OrderedWorkers<Target, Needs>(options_->jobs, next, work, consume).run();
  }

  // Safe to call from several threads.
  Needs needsOf(const Target& target) const {
    Needs needs;
    if (target.type != Target::Type::aClass || !isReadable(target)) {
      needs.outcome = updater_.update(target);
      return needs;
    }
    try {
      needs.missing = Ancestry(target.className).unknown();
      needs.outcome.addSuperClasses(target.className, target.path);
      needs.isClass = true;
    } catch (const fl::filesystem::ReadError&) {
      needs.outcome = updater_.update(target);
    }
    return needs;
  }

  static bool isReadable(const Target& target) {
    try {
      const auto description = sotarn::describeClass(target.className);
      if (description == nullptr) return false;
      const bool isKnown = !description->superClasses.empty() || description->sourcePath.empty();
      return isKnown || judgeFile(description->sourcePath, WordsType::program).type ==
                            FileVerdict::Type::holdsClass;
    } catch (const fl::filesystem::ReadError&) {
      return false;
    }
  }

  void take(const Needs& needs) {
    const TargetOutcome& outcome = needs.outcome;
    guard_.take(outcome);
    classes_ += needs.isClass ? 1 : 0;
    hasFiles_ = hasFiles_ || outcome.hasNoClass || outcome.passedOver;
    for (const Failure& failure : outcome.failures) printFailure(*console_, failure);
    hasFailed_ = hasFailed_ || !outcome.failures.empty();
    if (outcome.passedOver && outcome.passedOver->type == PassedOverFile::Type::isNamed) {
      console_->tell(fmt::format("note: '{}' is passed over: {}",
                                 names_.shown(outcome.passedOver->path),
                                 outcome.passedOver->reason));
    }
    for (const Ancestry::Missing& missing : needs.missing) {
      Unresolved& unresolved = unresolved_[missing.name];
      unresolved.isPFile = missing.isPFile;
      unresolved.namedBy.insert(missing.namedBy);
    }
  }

  bool lookedAtNothing() const { return classes_ == 0 && targets_.haveFolders() && !hasFailed_; }

  void printList() const {
    for (const auto& [name, unresolved] : unresolved_) {
      console_->print(fmt::format("{}: {}\n", name, describe(unresolved)));
    }
    if (options_->quiet) return;
    const std::size_t count = unresolved_.size();
    if (classes_ == 0) return;
    console_->tell(
        count == 0 ? fmt::format("all superclasses of {} were found",
                                 classes_ == 1 ? "1 class" : fmt::format("{} classes", classes_))
                   : fmt::format("{} not found; --format json prints a class table to complete",
                                 count == 1 ? "1 superclass was"
                                            : fmt::format("{} superclasses were", count)));
  }

  // "named by p.A and 2 more classes".
  static std::string describe(const Unresolved& unresolved) {
    const std::size_t more = unresolved.namedBy.size() - 1;
    return fmt::format("{}named by {}{}", unresolved.isPFile ? "only a p-file was found; " : "",
                       *unresolved.namedBy.begin(),
                       more == 0 ? "" : fmt::format(" and {} more", more));
  }

  void printTable() const {
    std::vector<std::string> names;
    for (const auto& entry : unresolved_) names.push_back(entry.first);
    console_->print(formatClassTable(names));
  }

  const Options* options_;
  Console* console_;
  fl::filesystem::FileView view_;
  FileNames names_;
  Git git_;
  Targets targets_;
  ClassUpdater updater_;
  RootGuard guard_;
  std::map<std::string, Unresolved> unresolved_;
  // The number of those that were looked at.
  std::size_t classes_ = 0;
  // Whether there are files without a class.
  bool hasFiles_ = false;
  bool hasFailed_ = false;
};

}  // namespace

ExitCodeType printUnresolved(const Options& options, const ClassRoots& roots, Console& console) {
  return UnresolvedRun(&options, &roots, &console).run();
}

}  // namespace soca::cli
