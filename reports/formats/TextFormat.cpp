// An update for users: the diffs, or the names of the classes that would change, and the messages
// about the classes.
#include <fmt/core.h>
#include <string>

#include "reports/FailureText.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/Hints.h"
#include "reports/text/Escapes.h"
#include "reports/text/UnifiedDiff.h"

namespace soca {
namespace {

// The number of lines of one kind that a quiet run prints.
constexpr std::size_t mostInQuietRun = 10;

// "3 attributes/logical, 1 mixins", or a text for no conversions.
std::string conversionsOf(const ClassOutcome& outcome) {
  std::string text;
  for (const ConversionKind& kind : conversionKinds) {
    const std::size_t count = outcome.update.conversionCounts[kind.type];
    if (count == 0) continue;
    text += fmt::format("{}{} {}", text.empty() ? "conversions: " : ", ", count, kind.name);
  }
  return text.empty() ? "no conversions" : text;
}

// `file:line: warning: text [id]`
std::string findingLine(const std::string& file, const Finding& finding) {
  std::string text = file;
  if (finding.line > 0) text += fmt::format(":{}", finding.line);
  text += fmt::format(": warning: {}", withEscapesInLine(finding.text));
  if (!finding.id.empty()) text += fmt::format(" [{}]", finding.id);
  return text + '\n';
}

// `file:line: error: the superclass ... was not found [id]`
std::string undecidedLine(const std::string& file, const Failure& failure) {
  std::string text = file;
  if (failure.place.line > 0) text += fmt::format(":{}", failure.place.line);
  text += fmt::format(": error: undecided: {}", describeMissing(failure.missing.front()));
  const std::size_t more = failure.missing.size() - 1;
  if (more > 0) text += fmt::format(", and {} more", more);
  if (failure.argument != failure.className) {
    text += fmt::format(", in the update of class '{}'", failure.className);
  }
  return text + " [SuperClassUnresolved]\n";
}

class TextReport : public UpdateReport {
 public:
  // All three must outlive the report.
  TextReport(const ReportOptions* options, const FileNames* names, ReportOutput* output)
      : options_(options), names_(names), output_(output) {}

  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override;
  void printNotes(const ClassOutcome& outcome) override;
  void addFailure(const Failure& failure) override { printFailure(*output_, failure); }
  void addSkipped(const Failure& failure) override;
  void addUndecided(const Failure& failure) override;
  void addSuggestion(const SuggestedRoots&, const std::string&) override {}
  void finish(ExitCodeType) override;

 private:
  const ReportOptions* options_;
  const FileNames* names_;
  ReportOutput* output_;
  std::size_t undecided_ = 0;
};

std::string TextReport::dataOf(const ClassOutcome& outcome) const {
  if (!outcome.update.hasNewText() || options_->quiet || options_->write) return {};
  if (options_->check) return outcome.update.className + '\n';
  return output_->colorsOut() ? colorDiff(withEscapes(outcome.file.diff)) : outcome.file.diff;
}

void TextReport::printData(const std::string& data) {
  if (output_->colorsOut()) {
    output_->printColored(data);
  } else {
    output_->print(data);
  }
}

void TextReport::printNotes(const ClassOutcome& outcome) {
  std::string text;
  const std::string file = names_->shown(outcome.update.file);
  if (options_->verbose) text += fmt::format("{}: {}\n", file, conversionsOf(outcome));
  if (!options_->quiet) {
    for (const Finding& finding : outcome.update.findings) text += findingLine(file, finding);
    for (const std::string& hint : outcome.hints) {
      text += fmt::format("{}: note: {}\n", file, withEscapesInLine(hint));
    }
  }
  if (options_->verbose && outcome.update.changesAgain) {
    text += fmt::format("{}: note: a second update would change it again\n", file);
  }
  if (options_->verbose && !outcome.writeRefusal.empty()) {
    text += fmt::format("{}: note: --write would refuse it: {}\n", file,
                        withEscapesInLine(outcome.writeRefusal));
  }
  if (!text.empty()) output_->printMessages(text);
  if (outcome.update.isRefused()) {
    output_->complain(fmt::format("the update of class '{}' in '{}' is refused: {}",
                                  outcome.update.className, file, outcome.update.refusal));
  }
}

void TextReport::addSkipped(const Failure& failure) {
  if (!options_->verbose) return;
  output_->tell(fmt::format("skipped: {}", failure.message));
  output_->printMessages(hintLines(failure.hints));
}

void TextReport::addUndecided(const Failure& failure) {
  if (++undecided_ > mostInQuietRun && options_->quiet) return;
  std::string text = undecidedLine(names_->shown(failure.path), failure);
  if (options_->verbose) text += hintLines(failure.hints);
  output_->printMessages(text);
}

void TextReport::finish(ExitCodeType) {
  if (!options_->quiet || undecided_ <= mostInQuietRun) return;
  output_->printMessages(
      fmt::format("  and {} more classes undecided\n", undecided_ - mostInQuietRun));
}

OutcomeNeeds needsOf(const ReportOptions& options) {
  OutcomeNeeds needs{.diff = !options.quiet && !options.check && !options.write,
                     .hints = !options.quiet};
  if (!options.quiet) needs.places = FindingPlacesType::members;
  return needs;
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<TextReport>(context.options, context.names, context.output);
}

}  // namespace

extern const ReportFormat textFormat;
constinit const ReportFormat textFormat = {.name = "text",
                                           .description = {},
                                           .isForPeople = true,
                                           .takesEdits = false,
                                           .whyNotWritten = {},
                                           .needs = needsOf,
                                           .make = makeReport};

}  // namespace soca
