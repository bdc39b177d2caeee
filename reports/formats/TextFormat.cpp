#include "reports/formats/TextFormat.h"

#include <fmt/core.h>

#include "reports/UnifiedDiff.h"

namespace soca::cli {
namespace {

std::string hintLines(const std::vector<std::string>& hints) {
  std::string text;
  for (const std::string& hint : hints) text += fmt::format("  hint: {}\n", hint);
  return text;
}

// "3 attributes, 1 mixins", or a text for no edits.
std::string editsOf(const ClassOutcome& outcome) {
  std::string text;
  for (const RuleFamily& family : ruleFamilies) {
    const std::size_t count = outcome.editCounts[family.type];
    if (count == 0) continue;
    text += fmt::format("{}{} {}", text.empty() ? "edits: " : ", ", count, family.name);
  }
  return text.empty() ? "no edits" : text;
}

// `file:line: warning: text [id]`
std::string findingLine(const std::string& file, const Finding& finding) {
  std::string text = file;
  if (finding.line > 0) text += fmt::format(":{}", finding.line);
  text += fmt::format(": warning: {}", finding.text);
  if (!finding.id.empty()) text += fmt::format(" [{}]", finding.id);
  return text + '\n';
}

}  // namespace

std::string TextReport::dataOf(const ClassOutcome& outcome) const {
  if (!outcome.hasNewFile() || options_->quiet || options_->write) return {};
  if (options_->check) return outcome.className + '\n';
  return console_->colorsOut() ? colorDiff(outcome.diff) : outcome.diff;
}

void TextReport::printNotes(const ClassOutcome& outcome) {
  std::string text;
  const std::string file = names_->shown(outcome.file);
  if (options_->verbose) text += fmt::format("{}: {}\n", file, editsOf(outcome));
  if (!options_->quiet) {
    for (const Finding& finding : outcome.findings) text += findingLine(file, finding);
    for (const std::string& hint : outcome.hints) text += fmt::format("{}: note: {}\n", file, hint);
  }
  if (options_->verbose && outcome.changesAgain) {
    text += fmt::format("{}: note: a second update would change it again\n", file);
  }
  if (options_->verbose && !outcome.writeRefusal.empty()) {
    text += fmt::format("{}: note: --write would refuse it: {}\n", file, outcome.writeRefusal);
  }
  if (!text.empty()) console_->printMessages(text);
  if (outcome.isRefused()) {
    console_->complain(fmt::format("the update of class '{}' in '{}' is refused: {}",
                                   outcome.className, file, outcome.refusal));
  }
}

void TextReport::addSkipped(const Failure& failure) {
  if (!options_->verbose) return;
  console_->tell(fmt::format("skipped: {}", failure.message));
  console_->printMessages(hintLines(failure.hints));
}

void TextReport::printFailure(Console& console, const Failure& failure) {
  console.complain(fmt::format("{}: {}", failure.id, failure.message));
  std::string text = failure.excerpt;
  // With superclasses the message may be about another class than the named one.
  const bool namesClass = failure.message.find(failure.className) != std::string::npos;
  if (failure.argument != failure.className && !namesClass) {
    text += fmt::format("  in the update of class '{}'\n", failure.className);
  }
  text += hintLines(failure.hints);
  if (!text.empty()) console.printMessages(text);
}

}  // namespace soca::cli
