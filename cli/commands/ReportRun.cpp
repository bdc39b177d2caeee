#include "cli/commands/ReportRun.h"

#include <new>
#include <optional>
#include <string>

#include "cli/terminal/Signals.h"
#include "files/targets/Targets.h"
#include "platform/paths/FileView.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "reports/FailureText.h"
#include "reports/outcomes/Failures.h"
#include "reports/outcomes/Hints.h"
#include "reports/outcomes/InternalErrors.h"
#include "reports/passes/OrderedWorkers.h"
#include "reports/text/FileNames.h"
#include "service/UpdaterImpl.h"

namespace soca::cli {
namespace {

struct ReportOutcome {
  std::string text;
  // That there is no such class, which the text does not say; empty if there is.
  std::string note;
  std::optional<Failure> failure;
};

fl::ustring makeReport(const Options& options, const fl::ustring& className) {
  UpdaterImpl updater;
  return options.command == CommandType::actions
             ? updater.reportActions(className, options.includeSuperclasses)
             : updater.reportClass(className);
}

ReportOutcome report(const Options& options, const ClassRoots& roots, const Target& target,
                     const FailureDescriber& describer) {
  const CurrentClass current(target.className);
  try {
    const auto className = fl::i18n::to_ustring(target.className);
    ReportOutcome outcome;
    outcome.text = fl::i18n::to_string(makeReport(options, className));
    if (sotarn::describeClass(target.className) == nullptr) {
      outcome.note = describeNoClass(target.className, roots);
    }
    return outcome;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return {{},
            {},
            describer.describeCurrentException(
                {target.className, options.rules.families, options.includeSuperclasses})};
  }
}

}  // namespace

ExitCodeType runReport(const Options& options, const ClassRoots& roots, Console& console) {
  const FileNames names(&roots);
  const FailureDescriber describer(&roots, &names, WordsType::service);
  const fl::filesystem::FileView view;
  Targets targets(&roots, options.arguments);
  auto exitCode = ExitCodeType::done;
  const auto next = [&]() -> std::optional<Target> {
    if (wasInterrupted()) return std::nullopt;
    return targets.next();
  };
  const auto consume = [&](const ReportOutcome& outcome) {
    console.print(outcome.text);
    if (!outcome.note.empty()) console.tell(outcome.note);
    if (outcome.failure) {
      printFailure(console, *outcome.failure);
      exitCode = ExitCodeType::failed;
    }
    return !wasInterrupted();
  };
  const auto work = [&](const Target& target) {
    const fl::filesystem::FileView::Scope scope(view);
    return report(options, roots, target, describer);
  };
  OrderedWorkers<Target, ReportOutcome>(options.jobs, next, work, consume).run();
  return wasInterrupted() ? interruptExitCode() : exitCode;
}

}  // namespace soca::cli
