#include "reports/outcomes/ClassUpdater.h"

#include <fmt/core.h>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "conversions/FileEdits.h"
#include "files/writing/NewFile.h"
#include "files/writing/Sha256.h"
#include "model/NameIndex.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"
#include "platform/timing/Phase.h"
#include "reports/UnifiedDiff.h"
#include "reports/explanations/ProgramMessages.h"
#include "reports/outcomes/Hints.h"
#include "reports/outcomes/InternalErrors.h"

namespace soca::cli {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;
using fl::timing::Phase;
using fl::timing::PhaseType;

// A failure with one of the program's own texts.
Failure makeFailure(const Target& target, std::string_view id,
                    std::initializer_list<std::string_view> arguments) {
  Failure failure;
  failure.className = target.className;
  failure.id = id;
  failure.message = programMessage(id, arguments);
  return failure;
}

// --- targets without a class, and classes that are no System objects ---

TargetOutcome outcomeOfHidden(const Target& target) {
  TargetOutcome outcome;
  Failure failure =
      makeFailure(target, "soca:HiddenFile", {target.path, target.className, target.hiddenBy});
  if (target.isNamed) {
    outcome.failures.push_back(std::move(failure));
  } else {
    outcome.skipped = std::move(failure);
  }
  return outcome;
}

TargetOutcome outcomeOfUnreadable(const Target& target) {
  TargetOutcome outcome;
  outcome.failures.push_back(
      makeFailure(target, "soca:FolderUnreadable", {target.className, target.reason}));
  return outcome;
}

TargetOutcome outcomeOfMisnamed(const Target& target) {
  TargetOutcome outcome;
  outcome.failures.push_back(makeFailure(target, "soca:NameNotUtf8", {target.className}));
  return outcome;
}

bool hasShortId(const Failure& failure, std::string_view id) { return failure.id.ends_with(id); }

// Whether the failure is about the named class, and not about a superclass.
bool isAboutItself(const Failure& failure, const Target& target) {
  const auto stem = stemOfClassFile(target.path);
  return failure.argument == target.className ||
         (stem && failure.argument == fmt::format("{}.vlm", *stem));
}

// A tree has many classes that are no System objects: these are failures only if an argument names
// them.
void addFailure(const Target& target, Failure failure, TargetOutcome& outcome) {
  const bool isNoneOfOurs =
      (hasShortId(failure, ":NotASystemObject") || hasShortId(failure, ":PFileExists")) &&
      isAboutItself(failure, target);
  if (target.isNamed || !isNoneOfOurs || failure.file == FileVerdict::Type::isUnreadable) {
    outcome.failures.push_back(std::move(failure));
  } else if (failure.file == FileVerdict::Type::holdsClass) {
    outcome.skipped = std::move(failure);
  } else {
    outcome.hasNoClass = true;
  }
}

Failure describeMissingDelimiter(const Target& target, const std::string& file,
                                 const SourcePosition& place) {
  Failure failure = makeFailure(target, "soca:DelimiterNotFound", {});
  failure.hints = {fmt::format("line {}, column {} of '{}' has something else than a delimiter",
                               place.line + 1, place.column + 1, file)};
  return failure;
}

// --- the outcome of a class ---

void countEdits(const PlannedClass& planned, ClassOutcome& outcome) {
  for (const PlannedAction& action : planned.actions) {
    ++outcome.editCounts[action.family];
  }
}

// The names in the first list that are not in the second.
std::vector<std::string> namesWithout(const std::vector<DeclaredMethod>& methods,
                                      const std::vector<DeclaredMethod>& others) {
  NameIndex<DeclaredMethod> known;
  known.add(others);
  known.finish();
  std::vector<std::string> names;
  for (const DeclaredMethod& method : methods) {
    if (known.find(method.name) == nullptr) names.push_back(to_string(method.name));
  }
  return names;
}

bool editsMethods(const ClassOutcome& outcome) {
  return outcome.editCounts[RuleFamilyType::impl] > 0;
}

// Lists the methods that are renamed or deleted.
void listChangedMethods(const std::vector<DeclaredMethod>& before,
                        const ca::AnalysisResult& updated, ClassOutcome& outcome) {
  const auto after = declaredMethods(updated);
  outcome.gainedMethods = namesWithout(after, before);
  outcome.deletedMethods = namesWithout(before, after);
}

// Updates the new text once more.
RepeatedUpdate updateAgain(const PlannedClass& planned, UpdateMask rules) {
  const fl::filesystem::OverlayScope overlay(to_string(planned.result.fileName), planned.newText);
  try {
    return repeatUpdate(planned.result.className, rules);
  } catch (const std::exception&) {
    // For any failure of the second update, the text counts as changed.
    return {ca::analyzeText(fl::ustring(planned.text())), true};
  }
}

}  // namespace

UpdateWishes makeWishes(const Options& options) {
  const bool isText = options.format == FormatType::text;
  UpdateWishes wishes;
  wishes.rules = options.rules;
  wishes.includeSuperclasses = options.includeSuperclasses;
  wishes.text = options.format == FormatType::json;
  wishes.hints = !isText || !options.quiet;
  wishes.conversions = options.format == FormatType::sarif;
  wishes.edits = options.edits || wishes.conversions;
  if (wishes.edits) wishes.places = FindingPlacesType::related;
  if (isText && !options.quiet) wishes.places = FindingPlacesType::members;
  return wishes;
}

TargetOutcome ClassUpdater::update(const Target& target) const {
  switch (target.type) {
    case Target::Type::hidden:
      return outcomeOfHidden(target);
    case Target::Type::unreadable:
      return outcomeOfUnreadable(target);
    case Target::Type::misnamed:
      return outcomeOfMisnamed(target);
    case Target::Type::noClass: {
      TargetOutcome outcome;
      outcome.hasNoClass = true;
      return outcome;
    }
    case Target::Type::aClass:
      break;
  }
  return updateClass(target);
}

TargetOutcome ClassUpdater::updateClass(const Target& target) const {
  const CurrentClass current(target.className);
  TargetOutcome outcome;
  try {
    const Phase phase(PhaseType::rules);
    const FindingsListener listener;
    for (PlannedClass& planned :
         planUpdate(to_ustring(target.className), wishes_.rules, wishes_.includeSuperclasses)) {
      if (planned.missingDelimiter) {
        outcome.failures.push_back(describeMissingDelimiter(
            target, to_string(planned.result.fileName), *planned.missingDelimiter));
        continue;
      }
      try {
        outcome.classes.push_back(makeOutcome(planned, listener));
      } catch (const ClassFault& fault) {
        Failure failure = makeFailure(target, fault.id(), {});
        failure.message = fault.what();
        outcome.failures.push_back(std::move(failure));
      }
    }
  } catch (...) {
    addFailure(target,
               describer_.describeCurrentException(
                   {target.className, wishes_.rules, wishes_.includeSuperclasses}),
               outcome);
  }
  return outcome;
}

ClassOutcome ClassUpdater::makeOutcome(PlannedClass& planned,
                                       const FindingsListener& listener) const {
  ClassOutcome outcome;
  outcome.className = to_string(planned.result.className);
  outcome.file = to_string(planned.result.fileName);
  outcome.updated = planned.result.updated;
  outcome.changed = planned.result.updated && !areEqualTexts(planned.text(), *planned.oldText);
  if (wishes_.text) outcome.text = to_string(planned.text());
  outcome.findings = listener.findingsOf(planned, wishes_.places);
  if (wishes_.hints) outcome.hints = hintsOnMissingSuperClasses(outcome.className, *roots_);
  countEdits(planned, outcome);
  if (outcome.changed) checkNewText(planned, outcome);
  if (outcome.hasNewFile() || wishes_.edits) addFile(planned, outcome);
  return outcome;
}

void ClassUpdater::checkNewText(PlannedClass& planned, ClassOutcome& outcome) const {
  const Phase phase(PhaseType::checks);
  const NewTextCheck check(planned);
  std::vector<DeclaredMethod> methods;
  if (editsMethods(outcome)) methods = declaredMethods(*planned.analysis);
  // The tree of the old text is freed before that of the new one is made, which may be three times
  // as large. The names of the methods point into the text.
  if (!wishes_.conversions) planned.analysis.reset();
  if (!wishes_.edits) std::vector<PlannedAction>().swap(planned.actions);
  {
    const RepeatedUpdate second = updateAgain(planned, wishes_.rules);
    if (auto reason = check.findReasonToRefuse(*second.analysis)) {
      outcome.refusal = std::move(*reason);
      return;
    }
    outcome.changesAgain = second.changesAgain;
    if (editsMethods(outcome)) listChangedMethods(methods, *second.analysis, outcome);
  }
  ca::forgetLastAnalysis();
}

fl::filesystem::FileState ClassUpdater::oldFileOf(const PlannedClass& planned,
                                                  const std::string& path) const {
  if (wishes_.input != nullptr) return wishes_.input->file;
  return stateOfOldFile(path, planned, wishes_.newBytes ? StampType::sure : StampType::any);
}

void ClassUpdater::addFile(const PlannedClass& planned, ClassOutcome& outcome) const {
  const Phase phase(PhaseType::diff);
  const fl::filesystem::FileState old = oldFileOf(planned, outcome.file);
  outcome.stamp = old.stamp;
  const auto bytesOf = [&](fl::ustring_view text) {
    return makeBytes(outcome.file, text, old.encoding);
  };
  if (wishes_.edits) {
    const fl::ustring_view text = *planned.oldText;
    outcome.bytes = FileBytes{sha256(bytesOf(text)), old.encoding, text.starts_with(u'\uFEFF')};
    if (outcome.hasNewFile()) outcome.edits = findFileEdits(planned, old.encoding);
    if (wishes_.conversions) outcome.conversions = findConversions(planned, outcome.edits);
  }
  if (!outcome.hasNewFile()) return;
  if (wishes_.diff || wishes_.newBytes) {
    outcome.newBytes = bytesOf(planned.text());
  } else {
    checkIsEncodable(outcome.file, planned.text(), old.encoding);
  }
  if (wishes_.input == nullptr) checkIsReplaceable(outcome.file);
  if (wishes_.diff) {
    outcome.diff =
        unifiedDiff(names_->inDiff(outcome.file), bytesOf(*planned.oldText), outcome.newBytes);
  }
  if (!wishes_.newBytes) outcome.newBytes = {};
}

}  // namespace soca::cli
