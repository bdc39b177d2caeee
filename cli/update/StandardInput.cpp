#include "cli/update/StandardInput.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "cli/terminal/Signals.h"
#include "cli/update/RootGuard.h"
#include "cli/update/SelectionNotes.h"
#include "files/targets/NearestFile.h"
#include "files/targets/Targets.h"
#include "files/targets/UsageError.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/Overlay.h"
#include "platform/text/FileText.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/ClassUpdater.h"
#include "reports/text/FileNames.h"

namespace soca::cli {
namespace {

// Reads up to the end of standard input, or until an interrupt.
std::string readAll() {
  std::string bytes;
  std::array<char, std::size_t{1} << 16U> buffer;
  while (!wasInterrupted()) {
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count == 0) break;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      throw std::runtime_error(
          fmt::format("standard input could not be read: {}", std::strerror(errno)));
    }
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
    if (bytes.size() > ca::maximumFileSize) {
      throw std::runtime_error(
          fmt::format("standard input has more than {} MiB", ca::maximumFileSize >> 20U));
    }
  }
  return bytes;
}

// A file that need not exist must have a class name all the same.
void checkIsOnRoot(const std::string& absolutePath, const Options& options,
                   const ClassRoots& roots) {
  const std::string path = roots.underRoot(absolutePath);
  const std::size_t slash = path.rfind('/');
  const bool isOnRoot =
      slash != std::string::npos &&
      roots.packageOf(path.substr(0, std::max<std::size_t>(slash, 1))).has_value();
  const auto stem = stemOfClassFile(std::string_view(path).substr(slash + 1));
  if (isOnRoot && isIdentifierName(*stem)) return;
  throw UsageError(fmt::format(
      "the file '{}' has no class name on any root of the class path: {}{}", options.stdinPath,
      roots.listing(), isOnRoot ? "" : suggestRoot(options.stdinPath)));
}

// The path as an argument, whether or not the file exists: the class of it is the one target.
Targets targetsOf(const Options& options, const ClassRoots& roots) {
  if (!stemOfClassFile(options.stdinPath) || options.stdinPath.ends_with(".p")) {
    throw UsageError(
        fmt::format("--stdin-path takes the path of a class file, which ends in .vlm, "
                    "and not '{}'",
                    options.stdinPath));
  }
  // A path with a slash cannot be taken for the name of a class.
  std::string path = fl::filesystem::makeAbsoluteLexically(options.stdinPath);
  checkIsOnRoot(path, options, roots);
  return Targets(&roots, {std::move(path)});
}

// No diff is needed: the new bytes themselves are printed.
UpdateRequest requestOf(const Options& options, const ConversionSelection& selection,
                        const ReportOptions& report, const fl::filesystem::FileState& file) {
  UpdateRequest request;
  request.limits = {options.highestRisk(), options.rules, !options.noLayout,
                    selection.isEmpty() ? nullptr : &selection};
  request.asService = options.asService;
  request.isTidy = options.tidy;
  request.needs = options.format->needs(report);
  request.needs.diff = false;
  request.needs.newBytes = options.format->isForPeople && !options.check;
  request.overlaidFile = &file;
  return request;
}

class StandardInputRun {
 public:
  StandardInputRun(const Options& options, const ClassRoots& roots, Console& console)
      : options_(options),
        selection_(readSelection(options)),
        console_(console),
        reportOptions_(options.forReport()),
        names_(&roots),
        targets_(targetsOf(options, roots)),
        target_(*targets_.next()),
        guard_(&options_, &roots, &names_, &targets_.namedFolders()),
        report_(options.format->make({&reportOptions_, &roots, &names_, &console})),
        notes_(&options_, &selection_) {}

  ExitCodeType run(const ClassRoots& roots) {
    const std::string bytes = readAll();
    if (wasInterrupted()) return interruptExitCode();
    fl::DecodedText decoded = fl::decodeFileText(bytes);
    fl::filesystem::FileState file;
    file.encoding = decoded.encoding;
    const fl::filesystem::OverlayScope overlay(target_.path, std::move(decoded.text));
    const TargetOutcome outcome =
        ClassUpdater(&roots, &names_, requestOf(options_, selection_, reportOptions_, file))
            .update(target_);
    guard_.take(outcome);
    guard_.look(hasNothingToDo(outcome));
    for (const ClassOutcome& each : outcome.classes) print(each, bytes);
    for (const Failure& failure : outcome.failures) report_->addFailure(failure);
    if (outcome.undecided) report_->addUndecided(*outcome.undecided);
    const bool failed = !outcome.failures.empty() || outcome.undecided || guard_.stopsTheRun();
    if (failed) exitCode_ = ExitCodeType::failed;
    notes_.report(*report_, console_);
    guard_.report(*report_);
    report_->finish(exitCode_);
    if (!options_.quiet) guard_.printNote(console_);
    guard_.printSuggestion(console_);
    return exitCode_;
  }

 private:
  static bool hasNothingToDo(const TargetOutcome& outcome) {
    const auto isDone = [](const ClassOutcome& each) {
      return !each.update.hasNewText() && !each.update.isRefused();
    };
    return !outcome.classes.empty() && outcome.failures.empty() &&
           std::ranges::all_of(outcome.classes, isDone);
  }

  void print(const ClassOutcome& outcome, const std::string& oldBytes) {
    notes_.take(outcome.update);
    report_->printNotes(report_->notesOf(outcome));
    if (outcome.update.isRefused()) exitCode_ = ExitCodeType::failed;
    if (options_.check && outcome.update.hasNewText()) exitCode_ = ExitCodeType::somethingToChange;
    if (options_.format->isForPeople && !options_.check) {
      if (!outcome.update.isRefused() && !guard_.stopsTheRun())
        console_.print(outcome.update.hasNewText() ? outcome.file.newBytes : oldBytes);
      return;
    }
    const std::string data = report_->dataOf(outcome);
    if (!data.empty()) report_->printData(data);
  }

  const Options& options_;
  ConversionSelection selection_;
  Console& console_;
  ReportOptions reportOptions_;
  FileNames names_;
  Targets targets_;
  Target target_;
  RootGuard guard_;
  std::unique_ptr<UpdateReport> report_;
  SelectionNotes notes_;
  ExitCodeType exitCode_ = ExitCodeType::done;
};

}  // namespace

ExitCodeType updateStandardInput(const Options& options, const ClassRoots& roots,
                                 Console& console) {
  return StandardInputRun(options, roots, console).run(roots);
}

}  // namespace soca::cli
