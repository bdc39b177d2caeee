#include "reports/outcomes/ClassUpdater.h"

#include <fmt/core.h>

#include <new>
#include <utility>
#include <vector>

#include "conversions/Conversions.h"
#include "conversions/FileEdits.h"
#include "conversions/Findings.h"
#include "files/writing/Digest.h"
#include "files/writing/NewFile.h"
#include "platform/text/Conversions.h"
#include "reports/explanations/ProgramMessages.h"
#include "reports/outcomes/Hints.h"
#include "reports/outcomes/InternalErrors.h"
#include "reports/outcomes/Phases.h"
#include "reports/text/UnifiedDiff.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;
using fl::timing::Phase;

// A failure with one of the program's own texts.
Failure makeFailure(const Target& target, const std::string& id,
                    const std::vector<std::string>& arguments) {
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

}  // namespace

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
    const Phase phase(rulesPhase);
    const FindingsListener listener;
    for (PlannedClass& planned :
         planUpdate(to_ustring(target.className), request_.rules, request_.includeSuperclasses)) {
      if (planned.missingDelimiter) {
        outcome.failures.push_back(describeMissingDelimiter(
            target, to_string(planned.result.fileName), *planned.missingDelimiter));
        continue;
      }
      try {
        outcome.classes.push_back(makeOutcome(planned, listener));
      } catch (const ClassFault& fault) {
        outcome.failures.push_back(makeFailure(target, fault.id(), fault.arguments()));
      }
    }
  } catch (const std::bad_alloc&) {
    // Not a fault of the class: the next one would fail as well.
    throw;
  } catch (...) {
    addFailure(target,
               describer_.describeCurrentException(
                   {target.className, request_.rules, request_.includeSuperclasses}),
               outcome);
  }
  return outcome;
}

ClassOutcome ClassUpdater::makeOutcome(PlannedClass& planned,
                                       const FindingsListener& listener) const {
  const OutcomeNeeds& needs = request_.needs;
  ClassOutcome outcome;
  ClassUpdate& update = outcome.update;
  update = describeUpdate(planned, listener, needs.places);
  if (needs.text) outcome.text = to_string(planned.text());
  if (needs.hints) outcome.hints = hintsOnMissingSuperClasses(update.className, *roots_);
  if (update.changed) {
    const Phase phase(checksPhase);
    checkUpdate(planned, request_.rules, {.analysis = needs.conversions, .actions = needs.edits},
                update);
  }
  if (update.hasNewText() || needs.edits) addFile(planned, outcome);
  return outcome;
}

fl::filesystem::FileState ClassUpdater::oldFileOf(const PlannedClass& planned,
                                                  const std::string& path) const {
  if (request_.overlaidFile != nullptr) return *request_.overlaidFile;
  return stateOfOldFile(path, planned, request_.needs.newBytes ? StampType::sure : StampType::any);
}

void ClassUpdater::addFile(const PlannedClass& planned, ClassOutcome& outcome) const {
  const Phase phase(diffPhase);
  const OutcomeNeeds& needs = request_.needs;
  const std::string& path = outcome.update.file;
  FileUpdate& file = outcome.file;
  const fl::filesystem::FileState old = oldFileOf(planned, path);
  file.stamp = old.stamp;
  const auto bytesOf = [&](fl::ustring_view text) { return makeBytes(path, text, old.encoding); };
  if (needs.edits) {
    const fl::ustring_view text = *planned.oldText;
    file.bytes = FileBytes{sha256(bytesOf(text)), old.encoding, text.starts_with(u'\uFEFF')};
    if (outcome.update.hasNewText()) file.edits = findFileEdits(planned, old.encoding);
    if (needs.conversions) file.conversions = findConversions(planned, file.edits);
  }
  if (!outcome.update.hasNewText()) return;
  if (needs.diff || needs.newBytes) {
    file.newBytes = bytesOf(planned.text());
  } else {
    checkIsEncodable(path, planned.text(), old.encoding);
  }
  if (request_.overlaidFile == nullptr) checkIsReplaceable(path);
  if (needs.diff) {
    file.diff = unifiedDiff(names_->inDiff(path), bytesOf(*planned.oldText), file.newBytes);
  }
  if (!needs.newBytes) file.newBytes = {};
}

}  // namespace soca
