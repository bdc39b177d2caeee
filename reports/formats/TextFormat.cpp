// An update for users: the diffs, or the names of the classes that would change, and the messages
// about the classes.
#include <fmt/core.h>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "conversions/superclasses/Ancestry.h"
#include "reports/FailureText.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/ConversionText.h"
#include "reports/text/Escapes.h"
#include "reports/text/TextLayout.h"
#include "reports/text/UnifiedDiff.h"

namespace soca {
namespace {

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

// `file:line: warning: text [id]`; the line may be 0, for none.
std::string warningLine(const std::string& file, std::uint64_t line, const std::string& text,
                        std::string_view id) {
  std::string warning = file;
  if (line > 0) warning += fmt::format(":{}", line);
  warning += fmt::format(": warning: {}", withEscapesInLine(text));
  if (!id.empty()) warning += fmt::format(" [{}]", id);
  return warning + '\n';
}

std::string leftOutLine(const std::string& file, const Conversion& conversion,
                        const ConversionReason& reason, LinesType lines) {
  std::string text = describeLeftOut(conversion, reason, lines);
  const std::string advice = adviceOn(reason);
  if (!advice.empty()) text += ". " + advice;
  const std::uint64_t oldLine = conversion.place.start.line + 1;
  return warningLine(file, lines == LinesType::updated ? conversion.newPlace.line : oldLine, text,
                     reason.id);
}

// `file:line: note: lines 12 to 14 laid apart for method 'f' [id]`
std::string layoutLine(const std::string& file, const Conversion& conversion,
                       const ConversionReason& layout, LinesType lines) {
  const RelatedPlace& first = layout.places.front();
  const std::uint64_t line = lines == LinesType::updated ? first.newPlace.line : first.line;
  return fmt::format("{}{}: note: {} [{}]\n", file, line > 0 ? fmt::format(":{}", line) : "",
                     withEscapesInLine(describeLayout(conversion, layout, lines)), layout.id);
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
  // The lines of messages, and after a U+0000 the reason for which the update is refused.
  std::string notesOf(const ClassOutcome& outcome) const override;
  void printNotes(const std::string& notes) override;
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void addUndecided(const Failure& failure) override;
  void addNotFound(const std::string& id, const std::string& reason) override;
  void addSuggestion(const SuggestedRoots&, const std::string&) override {}
  void finish(ExitCodeType) override;

 private:
  std::string findingLine(const std::string& file, const Finding& finding,
                          const ClassUpdate& update) const;
  std::string leftOutLines(const std::string& file, const ClassUpdate& update) const;
  // Whether conversions that are left out for this reason have no lines.
  bool isHidden(const ConversionReason& reason) const;
  // The lines that a quiet run prints.
  std::string linesWithRoom(std::string_view lines);
  // The text to which the lines of the notes refer.
  LinesType linesOf(const ClassUpdate& update) const;
  // Whether to print another line for the reason; a quiet run counts those that are omitted.
  bool hasRoomFor(const std::string& reason);

  const ReportOptions* options_;
  const FileNames* names_;
  ReportOutput* output_;
  // The lines of a quiet run for each reason, as the end of "and 3 more".
  std::map<std::string, std::size_t> linesByReason_;
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

std::string TextReport::notesOf(const ClassOutcome& outcome) const {
  std::string text;
  const std::string file = names_->shown(outcome.update.file);
  if (options_->verbose) text += fmt::format("{}: {}\n", file, conversionsOf(outcome));
  if (!options_->quiet) {
    for (const Conversion& conversion : outcome.update.conversions) {
      if (const ConversionReason* layout = conversion.findLaidApart()) {
        text += layoutLine(file, conversion, *layout, linesOf(outcome.update));
      }
    }
    for (const Finding& finding : outcome.update.findings) {
      text += findingLine(file, finding, outcome.update);
    }
    for (const std::string& hint : outcome.hints) {
      text += fmt::format("{}: note: {}\n", file, withEscapesInLine(hint));
    }
  }
  if (!options_->asService && !options_->summary) text += leftOutLines(file, outcome.update);
  if (options_->verbose && outcome.update.changesAgain) {
    text += fmt::format("{}: note: a second update would change it again\n", file);
  }
  if (options_->verbose && !outcome.writeRefusal.empty()) {
    text += fmt::format("{}: note: --write would refuse it: {}\n", file,
                        withEscapesInLine(outcome.writeRefusal));
  }
  if (outcome.update.isRefused()) {
    text += '\0';
    text += fmt::format("the update of class '{}' in '{}' is refused: {}", outcome.update.className,
                        file, outcome.update.refusal);
  }
  return text;
}

void TextReport::printNotes(const std::string& notes) {
  const std::string_view lines = std::string_view(notes).substr(0, notes.find('\0'));
  const std::string shown = linesWithRoom(lines);
  if (!shown.empty()) output_->printMessages(shown);
  if (lines.size() < notes.size() && hasRoomFor(" classes refused")) {
    output_->complain(notes.substr(lines.size() + 1));
  }
}

std::string TextReport::findingLine(const std::string& file, const Finding& finding,
                                    const ClassUpdate& update) const {
  if (options_->asService) return warningLine(file, finding.line, finding.text, finding.id);
  const LinesType lines = linesOf(update);
  return warningLine(file, lines == LinesType::updated ? finding.newPlace.line : finding.line,
                     describeFinding(finding, lines), finding.id);
}

LinesType TextReport::linesOf(const ClassUpdate& update) const {
  return options_->write && update.hasNewText() ? LinesType::updated : LinesType::old;
}

bool TextReport::isHidden(const ConversionReason& reason) const {
  return options_->hasSelection && !options_->verbose && reason.id == "soca:NotSelected";
}

std::string TextReport::leftOutLines(const std::string& file, const ClassUpdate& update) const {
  std::string text;
  for (const Conversion& conversion : update.conversions) {
    if (!conversion.leftOut || isHidden(*conversion.leftOut)) continue;
    text += leftOutLine(file, conversion, *conversion.leftOut, linesOf(update));
  }
  return text;
}

// A line for a reason ends with its id.
std::string TextReport::linesWithRoom(std::string_view lines) {
  std::string text;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n') + 1);
    lines.remove_prefix(line.size());
    const std::size_t id = line.rfind(" [");
    const bool hasId = line.ends_with("]\n") && id != std::string_view::npos;
    if (!hasId || hasRoomFor(std::string(line.substr(id, line.size() - id - 1)))) text += line;
  }
  return text;
}

bool TextReport::hasRoomFor(const std::string& reason) {
  if (!options_->quiet || options_->asService) return true;
  return ++linesByReason_[reason] <= mostInQuietRun;
}

void TextReport::addFailure(const Failure& failure) {
  if (hasRoomFor(fmt::format(" [{}]", failure.id))) printFailure(*output_, failure);
}

void TextReport::addSkipped(const Failure& failure) {
  if (!options_->verbose) return;
  output_->tell(fmt::format("skipped: {}", failure.message));
  output_->printMessages(hintLines(failure.hints));
}

void TextReport::addUndecided(const Failure& failure) {
  if (!hasRoomFor(" classes undecided")) return;
  std::string text = undecidedLine(names_->shown(failure.path), failure);
  if (options_->verbose) text += hintLines(failure.hints);
  output_->printMessages(text);
}

void TextReport::addNotFound(const std::string& id, const std::string& reason) {
  if (!hasRoomFor(" [soca:ConversionNotFound]")) return;
  output_->printMessages(
      fmt::format("warning: '{}' was selected and is not found: {} "
                  "[soca:ConversionNotFound]\n",
                  withEscapesInLine(id), reason));
}

void TextReport::finish(ExitCodeType) {
  std::string text;
  for (const auto& [reason, lines] : linesByReason_) {
    if (lines <= mostInQuietRun) continue;
    text += fmt::format("  and {} more{}\n", groupDigits(lines - mostInQuietRun), reason);
  }
  if (!text.empty()) output_->printMessages(text);
}

OutcomeNeeds needsOf(const ReportOptions& options) {
  OutcomeNeeds needs{.diff = !options.quiet && !options.check && !options.write,
                     .hints = !options.quiet};
  if (options.quiet) return needs;
  needs.places = options.asService ? FindingPlacesType::members : FindingPlacesType::related;
  return needs;
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<TextReport>(context.options, context.names, context.output);
}

}  // namespace

extern const ReportFormat textFormat;
extern const ReportFormat listFormat;
constinit const ReportFormat textFormat = {.name = "text",
                                           .description = {},
                                           .isForPeople = true,
                                           .takesEdits = false,
                                           .isForService = true,
                                           .whyNotWritten = {},
                                           .needs = needsOf,
                                           .make = makeReport,
                                           .list = &listFormat};

}  // namespace soca
