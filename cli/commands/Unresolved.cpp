#include "cli/commands/Unresolved.h"

#include <fmt/core.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/commands/OrderedWorkers.h"
#include "cli/commands/RootGuard.h"
#include "cli/terminal/Signals.h"
#include "conversions/Ancestry.h"
#include "files/targets/Git.h"
#include "files/targets/Targets.h"
#include "platform/paths/FileView.h"
#include "platform/runtime/ClassDescription.h"
#include "reports/formats/ClassTableText.h"
#include "reports/outcomes/Failures.h"
#include "reports/outcomes/Outcome.h"
#include "reports/text/FileNames.h"

namespace soca::cli {
namespace {

// What one target needs.
struct Needs {
  std::vector<Ancestry::Missing> missing;
  // Only with the parts for the root guard.
  TargetOutcome outcome;
  // Why the target could not be looked at; empty if it could.
  std::string failure;
};

// A superclass that is not found.
struct Unresolved {
  bool isPFile = false;
  std::set<std::string> namedBy;
};

Needs needsOf(const Target& target) {
  Needs needs;
  if (target.type == Target::Type::unreadable) {
    needs.failure = fmt::format("the folder '{}' can't be read: {}", target.path, target.reason);
  }
  if (target.type == Target::Type::undecided) {
    needs.failure = describeUnreadable({target.path, target.reason}).message;
  }
  if (target.type != Target::Type::aClass) return needs;
  try {
    if (target.isNamed && sotarn::describeClass(target.className) == nullptr) {
      needs.failure = fmt::format("there is no class '{}'", target.className);
      return needs;
    }
    needs.missing = Ancestry(target.className).unknown();
    needs.outcome.addSuperClasses(target.className, target.path);
  } catch (const fl::filesystem::ReadError& error) {
    needs.failure = describeUnreadable(error).message;
  }
  return needs;
}

class UnresolvedRun {
 public:
  UnresolvedRun(const Options* options, const ClassRoots* roots, Console* console)
      : options_(options),
        console_(console),
        names_(roots),
        targets_(roots, options->arguments, WalkType::filtered, &git_,
                 OtherFilesType::arePassedOver),
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

  void take(const Needs& needs) {
    guard_.take(needs.outcome);
    for (const Ancestry::Missing& missing : needs.missing) {
      Unresolved& unresolved = unresolved_[missing.name];
      unresolved.isPFile = missing.isPFile;
      unresolved.namedBy.insert(missing.namedBy);
    }
    if (needs.failure.empty()) return;
    console_->complain(needs.failure);
    hasFailed_ = true;
  }

  void printList() const {
    for (const auto& [name, unresolved] : unresolved_) {
      console_->print(fmt::format("{}: {}\n", name, describe(unresolved)));
    }
    if (options_->quiet) return;
    const std::size_t count = unresolved_.size();
    console_->tell(count == 0
                       ? "all superclasses were found"
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
  RootGuard guard_;
  std::map<std::string, Unresolved> unresolved_;
  bool hasFailed_ = false;
};

}  // namespace

ExitCodeType printUnresolved(const Options& options, const ClassRoots& roots, Console& console) {
  return UnresolvedRun(&options, &roots, &console).run();
}

}  // namespace soca::cli
