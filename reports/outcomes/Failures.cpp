#include "reports/outcomes/Failures.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "platform/analyzer/Analyzer.h"
#include "platform/messages/MessageCatalog.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "reports/explanations/ProgramMessages.h"
#include "reports/outcomes/Hints.h"
#include "reports/text/SyntaxReport.h"
#include "service/ClaimedExtents.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

// The number of syntax errors of a file that are shown.
constexpr std::size_t shownErrors = 10;

// The first argument of the message in UTF-8.
std::string firstArgument(const resource_core::BaseMsgID& message) {
  if (message.arguments.empty()) return {};
  const auto& argument = message.arguments.front();
  if (const auto* text = std::get_if<fl::ustring>(&argument)) return fl::i18n::to_string(*text);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return {};
}

std::shared_ptr<ca::AnalysisResult> analyzeFile(const std::string& path) {
  return ca::createSingleFileAnalyzer()->analyze(fl::i18n::to_ustring(path), {}, {});
}

// The first two actions that overlap on a line, in the order in which they are applied.
std::optional<std::pair<Extent, Extent>> findOverlap(const std::vector<PlannedAction>& actions) {
  ClaimedExtents claimed;
  for (auto later = actions.begin(); later != actions.end(); ++later) {
    if (claimed.collidesWith(later->extent)) {
      const auto earlier = std::find_if(actions.begin(), later, [&](const PlannedAction& action) {
        return later->extent.startsWithinLinesOf(action.extent);
      });
      return std::pair(earlier->extent, later->extent);
    }
    claimed.add(later->extent);
  }
  return std::nullopt;
}

// "line 3" or "lines 3 to 5".
std::string linesOf(const Extent& extent) {
  if (extent.start.line == extent.end.line) return fmt::format("line {}", extent.start.line + 1);
  return fmt::format("lines {} to {}", extent.start.line + 1, extent.end.line + 1);
}

// Runs a search for details. If it fails, because files may have changed meanwhile, the failure is
// reported without them.
template <class Explain>
void explainSafely(Failure& failure, const Explain& explain) {
  try {
    explain();
  } catch (...) {
    failure.hints.emplace_back("the files changed meanwhile, so there is no more to say");
  }
}

}  // namespace

Failure describeUnsettled() {
  Failure failure;
  failure.id = "soca:NotSettled";
  failure.message = programMessage(failure.id, {});
  return failure;
}

Failure describeUnreadable(const fl::filesystem::ReadError& error) {
  const resource_core::BaseMsgID message = {
      {error.path()}, "VELUM:system:Analyzer", "CodeAnalyzerError"};
  Failure failure;
  failure.id = message.catalog + ':' + message.id;
  failure.message = fl::i18n::to_string(
      fl::i18n::MessageCatalog::get_message(message, fl::i18n::Locale::global()));
  failure.argument = error.path();
  failure.hints = {error.what()};
  return failure;
}

Failure FailureDescriber::describeCurrentException(const FailedCall& call) const {
  Failure failure;
  failure.className = call.className;
  try {
    throw;
  } catch (const foundation::core::except::IMsgIDException& exception) {
    return describe(exception, call);
  } catch (const fl::filesystem::ReadError& error) {
    failure = describeUnreadable(error);
    failure.className = call.className;
  } catch (const std::out_of_range&) {
    failure.id = "std::out_of_range";
    failure.message = programMessage(failure.id, {});
    explainSafely(failure, [&] { explainMisplacedEdit(call, failure); });
  } catch (const std::exception& exception) {
    failure.id = "std::exception";
    failure.message = exception.what();
  } catch (...) {
    failure.id = "soca:UnknownFailure";
    failure.message = "something went wrong that does not say what it is";
  }
  return failure;
}

Failure FailureDescriber::describe(const foundation::core::except::IMsgIDException& exception,
                                   const FailedCall& call) const {
  Failure failure;
  failure.className = call.className;
  failure.id = exception.GetID();
  failure.message = fl::i18n::to_string(exception.GetUnicodeMessageTxt());
  explainSafely(failure, [&] { explain(exception.GetBaseMsgIDObj(), call, failure); });
  return failure;
}

void FailureDescriber::explain(const resource_core::BaseMsgID& message, const FailedCall& call,
                               Failure& failure) const {
  const std::string argument = firstArgument(message);
  failure.argument = argument;
  if (message.id == "NotASystemObject") explainOtherClass(argument, failure);
  if (message.id == "SyntaxError") explainSyntax(argument, failure);
  if (message.id == "CodeAnalyzerError") {
    try {
      analyzeFile(argument);
      failure.hints = {"it can be read now; run the command again"};
    } catch (const ca::InvalidAnalysisException& reason) {
      failure.hints = {reason.what()};
    }
  }
  if (message.id == "PFileExists") failure.hints = hintsOnPFile(argument);
  if (message.id == "NoFileForClass") {
    failure.hints = {sotarn::isEnvironmentClass(argument)
                         ? "the class is one of the environment's own, which have no files"
                         : fmt::format("looked for it in {}", roots_->listing())};
  }
  if (message.id == "OverlappingExtent") explainOverlap(call, failure);
}

void FailureDescriber::explainOtherClass(const std::string& argument, Failure& failure) const {
  // For a file without a class the argument is its path.
  if (!argument.starts_with('/')) {
    OtherClassHints other = hintsOnOtherClass(argument, *roots_, words_);
    failure.hints = std::move(other.hints);
    failure.file = other.file;
    failure.missing = std::move(other.missing);
  } else {
    const FileVerdict verdict = judgeFile(argument, words_);
    failure.hints = {verdict.text};
    failure.file = verdict.type;
  }
  if (words_ == WordsType::program) correctMessage(argument, failure);
}

void FailureDescriber::correctMessage(const std::string& argument, Failure& failure) {
  const bool isPath = argument.starts_with('/');
  const std::string subject =
      isPath ? fmt::format("The file '{}'", argument) : fmt::format("The file of '{}'", argument);
  if (failure.file == FileVerdict::Type::isUnreadable) {
    failure.message = subject + " can't be read.";
  } else if (failure.file == FileVerdict::Type::isUtf16) {
    failure.message = subject + " is in UTF-16, which is not supported.";
    failure.hints = {"save it in UTF-8"};
  } else if (!isPath && !isClassName(argument)) {
    failure.message = fmt::format("'{}' is no class name.", argument);
  } else if (!isPath && sotarn::describeClass(argument) == nullptr) {
    failure.message = fmt::format("There is no class '{}'.", argument);
  }
}

void FailureDescriber::explainSyntax(const std::string& path, Failure& failure) const {
  const auto analysis = analyzeFile(path);
  failure.diagnostics = analysis->diagnostics();
  failure.excerpt = formatSyntaxErrors(names_->shown(path), *analysis, shownErrors);
}

void FailureDescriber::explainMisplacedEdit(const FailedCall& call, Failure& failure) {
  for (const PlannedClass& planned :
       planActions(fl::i18n::to_ustring(call.className), call.rules, call.includeSuperclasses)) {
    try {
      planUpdate(planned.result.className, call.rules, false);
    } catch (const std::out_of_range&) {
      failure.hints = {
          fmt::format("it is in the file '{}'", fl::i18n::to_string(planned.result.fileName))};
      return;
    }
  }
}

void FailureDescriber::explainOverlap(const FailedCall& call, Failure& failure) {
  for (const PlannedClass& planned :
       planActions(fl::i18n::to_ustring(call.className), call.rules, call.includeSuperclasses)) {
    const auto overlap = findOverlap(planned.actions);
    if (!overlap) continue;
    const auto& [first, second] = *overlap;
    failure.hints = {
        fmt::format("the edits of class '{}' that meet are on {}{} of '{}'",
                    fl::i18n::to_string(planned.result.className), linesOf(first),
                    linesOf(first) == linesOf(second) ? "" : " and on " + linesOf(second),
                    fl::i18n::to_string(planned.result.fileName)),
        "put what is to be edited on lines of its own, and try again"};
    return;
  }
}

}  // namespace soca
