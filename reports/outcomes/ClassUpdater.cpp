#include "reports/outcomes/ClassUpdater.h"

#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "conversions/ConversionEdits.h"
#include "conversions/Conversions.h"
#include "conversions/FileEdits.h"
#include "conversions/OldForms.h"
#include "conversions/passes/TextChanges.h"
#include "conversions/superclasses/SuperClassList.h"
#include "files/writing/Digest.h"
#include "files/writing/NewFile.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
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

// The largest number of places of one reason whose lines are shown.
constexpr std::size_t mostShownPlaces = 4;

// A failure with one of the program's own texts.
Failure makeFailure(const std::string& id, const std::vector<std::string>& arguments) {
  Failure failure;
  failure.id = id;
  failure.message = programMessage(id, arguments);
  return failure;
}

// --- the lines that a report shows ---

void addLines(const ConversionReason& reason, std::vector<std::uint64_t>& lines) {
  const std::size_t count = std::min(reason.places.size(), mostShownPlaces);
  for (std::size_t i = 0; i < count; ++i) lines.push_back(reason.places[i].line);
}

// The lines of findings, of what is left out, and of what is in the way, in the text as it was
// read.
std::vector<std::uint64_t> reportedLines(const ClassUpdate& update) {
  std::vector<std::uint64_t> lines;
  for (const Finding& finding : update.findings) lines.push_back(finding.line);
  for (const Conversion& conversion : update.conversions) {
    for (const ConversionReason& reason : conversion.risk.reasons) addLines(reason, lines);
    if (!conversion.leftOut) continue;
    lines.push_back(conversion.place.start.line + 1);
    addLines(*conversion.leftOut, lines);
  }
  return lines;
}

// --- targets without a class, and classes that are no System objects ---

void addFailureOf(const Target& target, Failure failure, TargetOutcome& outcome) {
  failure.className = target.className;
  outcome.failures.push_back(std::move(failure));
}

TargetOutcome outcomeOfHidden(const Target& target) {
  TargetOutcome outcome;
  addFailureOf(target,
               makeFailure("soca:HiddenFile", {target.path, target.className, target.hiddenBy}),
               outcome);
  if (!target.isNamed) {
    outcome.skipped = std::move(outcome.failures.front());
    outcome.failures.clear();
  }
  return outcome;
}

TargetOutcome outcomeOfPassedOver(PassedOverFile::Type type, std::string path, std::string reason) {
  TargetOutcome outcome;
  outcome.passedOver = PassedOverFile{type, std::move(path), std::move(reason)};
  return outcome;
}

TargetOutcome outcomeOfOtherName(const Target& target, bool asService) {
  if (!asService) {
    return outcomeOfPassedOver(PassedOverFile::Type::hasOtherName, target.path,
                               stemOfClassFile(target.path)
                                   ? "its name is no class name"
                                   : "its name is no class name, which ends in .vlm");
  }
  TargetOutcome outcome;
  outcome.hasNoClass = stemOfClassFile(target.path).has_value();
  return outcome;
}

TargetOutcome outcomeWithoutClass(const Target& target, bool asService) {
  TargetOutcome outcome;
  switch (target.type) {
    case Target::Type::hidden:
      return outcomeOfHidden(target);
    case Target::Type::otherName:
      return outcomeOfOtherName(target, asService);
    case Target::Type::passedOver:
      return outcomeOfPassedOver(PassedOverFile::Type::isNamed, target.path, target.reason);
    case Target::Type::unreadable:
      addFailureOf(target, makeFailure("soca:FolderUnreadable", {target.className, target.reason}),
                   outcome);
      break;
    case Target::Type::misnamed:
      addFailureOf(target, makeFailure("soca:NameNotUtf8", {target.className}), outcome);
      break;
    case Target::Type::undecided:
      addFailureOf(target, describeUnreadable({target.path, target.reason}), outcome);
      break;
    default:
      outcome.hasNoClass = true;
  }
  return outcome;
}

bool hasShortId(const Failure& failure, std::string_view id) { return failure.id.ends_with(id); }

// Whether the failure is about the named class, and not about a superclass.
bool isAboutItself(const Failure& failure, const Target& target) {
  const auto stem = stemOfClassFile(target.path);
  return failure.argument == target.className ||
         (stem && failure.argument == fmt::format("{}.vlm", *stem));
}

// Empty for a class without a source file.
std::string sourcePathOf(const std::string& className) {
  const auto description = sotarn::describeClass(className);
  return description == nullptr ? std::string() : description->sourcePath;
}

// An undecided class, or one with a superclass of which that is not known: the reason in place of
// the service's text.
Failure describeUndecided(Failure failure, const std::string& path) {
  const bool isSuperClass = failure.argument != failure.className;
  failure.message =
      fmt::format("It is not known whether '{}'{} is a System object class: {}.",
                  isSuperClass ? failure.argument : failure.className,
                  isSuperClass ? fmt::format(", a superclass of '{}',", failure.className) : "",
                  describeMissing(failure.missing.front()));
  failure.path = path;
  try {
    failure.place = placeInSuperClassList(*ca::analyzeFile(path), failure.missing.front().name);
  } catch (const fl::filesystem::ReadError&) {
    // The file changed meanwhile.
  }
  return failure;
}

Failure describeMissingDelimiter(const std::string& file, const SourcePosition& place) {
  Failure failure = makeFailure("soca:DelimiterNotFound", {});
  failure.hints = {fmt::format("line {}, column {} of '{}' has something else than a delimiter",
                               place.line + 1, place.column + 1, file)};
  return failure;
}

// A class that cannot be updated may use the methods of others all the same. Its file may be read
// only in part.
std::optional<PassFacts> factsOfBystander(const std::string& className) {
  try {
    const std::string path = sourcePathOf(className);
    if (path.empty()) return std::nullopt;
    PassFacts facts;
    facts.superClasses = findSuperClassesWithFile(className);
    if (facts.superClasses.empty()) return std::nullopt;
    facts.names = findMethodNames(*ca::analyzeFile(path));
    facts.isKept = true;
    return facts;
  } catch (const fl::filesystem::ReadError&) {
    // Nobody knows what is in it.
    return std::nullopt;
  }
}

FailureScopeType scopeOf(UpdateStageType stage) {
  switch (stage) {
    case UpdateStageType::loading:
      return FailureScopeType::loading;
    case UpdateStageType::rules:
      return FailureScopeType::rules;
    case UpdateStageType::edits:
      break;
  }
  return FailureScopeType::edits;
}

}  // namespace

TargetOutcome ClassUpdater::update(const Target& target) const {
  if (target.type != Target::Type::aClass) return outcomeWithoutClass(target, request_.asService);
  TargetOutcome outcome;
  SingleUpdate single = updateAlone(target.className);
  if (single.outcome) outcome.classes.push_back(std::move(*single.outcome));
  std::vector<Failure> failures;
  if (single.failure) failures.push_back(std::move(*single.failure));
  complete(target, std::move(failures), outcome);
  return outcome;
}

TargetOutcome ClassUpdater::update(const Target& target, SharedUpdates& shared) const {
  if (target.type != Target::Type::aClass) return outcomeWithoutClass(target, request_.asService);
  TargetOutcome outcome;
  outcome.sharedClass = target.className;
  shared.update(target.className);
  complete(target, shared.failuresOf(target.className), outcome);
  return outcome;
}

void ClassUpdater::complete(const Target& target, std::vector<Failure> failures,
                            TargetOutcome& outcome) const {
  try {
    for (Failure& failure : failures) addFailure(target, std::move(failure), outcome);
    if (!request_.asService) outcome.addSuperClasses(target.className, target.path);
    const bool isDecided = outcome.failures.empty() && !outcome.skipped && !outcome.undecided;
    if (!request_.needs.facts || isDecided) return;
    if (auto facts = factsOfBystander(target.className)) {
      outcome.bystander.emplace(target.className, std::move(*facts));
    }
  } catch (const fl::filesystem::ReadError& error) {
    outcome = {};
    addFailureOf(target, describeUnreadable(error), outcome);
  }
}

SingleUpdate ClassUpdater::updateAlone(const std::string& className) const {
  SingleUpdate single = update(className, nullptr);
  if (single.outcome && single.outcome->facts.takesPart()) {
    single.outcome->facts.passes = std::move(single.passes);
  }
  return single;
}

SingleUpdate ClassUpdater::updateInPasses(const std::string& className,
                                          const std::vector<PassView>& views) const {
  return update(className, &views);
}

SingleUpdate ClassUpdater::update(const std::string& className,
                                  const std::vector<PassView>* views) const {
  const CurrentClass current(className);
  SingleUpdate single;
  try {
    const Phase phase(rulesPhase);
    ClassPlan plan = planClassOnce(to_ustring(className), families(), request_.includeSuperclasses,
                                   {.keepLines = !request_.asService || request_.needs.edits,
                                    .listFaults = !request_.asService,
                                    .isTidy = request_.isTidy});
    for (const fl::ustring& name : plan.superClassNames) {
      single.superClasses.push_back(to_string(name));
    }
    single.scope = scopeOf(plan.stage);
    if (plan.failure) std::rethrow_exception(plan.failure);
    single.scope = FailureScopeType::outcome;
    finishPlan(std::move(*plan.planned), views, single);
  } catch (const std::bad_alloc&) {
    // Not a fault of the class: the next one would fail as well.
    throw;
  } catch (...) {
    single.failure = describer_.describeCurrentException({className, families(), false});
  }
  return single;
}

void ClassUpdater::finishPlan(PlannedClass planned, const std::vector<PassView>* views,
                              SingleUpdate& single) const {
  if (planned.missingDelimiter) {
    single.scope = FailureScopeType::classOnly;
    single.failure =
        describeMissingDelimiter(to_string(planned.result.fileName), *planned.missingDelimiter);
    return;
  }
  try {
    single.outcome = request_.asService ? makeServiceOutcome(planned)
                                        : makeOutcome(std::move(planned), views, single.passes);
  } catch (const NotSettled&) {
    single.scope = FailureScopeType::classOnly;
    single.failure = describeUnsettled();
  } catch (const ClassFault& fault) {
    single.scope = FailureScopeType::classOnly;
    single.failure = makeFailure(fault.id(), fault.arguments());
  }
}

bool ClassUpdater::isUndecided(const Failure& failure, const std::string& path) const {
  if (request_.asService || failure.missing.empty() || path.empty()) return false;
  // The old forms of a class with such a superclass do not matter: it would fail.
  return failure.argument != failure.className || hasOldForms(failure.className, path, families());
}

// A tree has many classes that are no System objects: these are failures only if an argument names
// them.
void ClassUpdater::addFailure(const Target& target, Failure failure, TargetOutcome& outcome) const {
  failure.className = target.className;
  const bool isOther = hasShortId(failure, ":NotASystemObject");
  const bool isNoneOfOurs =
      (isOther || hasShortId(failure, ":PFileExists")) && isAboutItself(failure, target);
  // That of the target or of a superclass.
  const std::string path = isOther ? sourcePathOf(failure.argument) : std::string();
  using FileType = FileVerdict::Type;
  const bool holdsNoClass =
      failure.file == FileType::isEmpty || failure.file == FileType::holdsNoClass;
  if (isOther && isUndecided(failure, path)) {
    outcome.undecided = describeUndecided(std::move(failure), path);
  } else if (isNoneOfOurs && target.mayHoldNoClass && holdsNoClass) {
    outcome.passedOver = {PassedOverFile::Type::isNamed, target.path,
                          failure.file == FileType::isEmpty ? "it is empty" : "it holds no class"};
  } else if (isNoneOfOurs && !target.isNamed && failure.file == FileType::isUtf16) {
    outcome.passedOver = {PassedOverFile::Type::isUtf16, target.path, "it is in UTF-16"};
  } else if (target.isNamed || !isNoneOfOurs || failure.file == FileVerdict::Type::isUnreadable) {
    outcome.failures.push_back(std::move(failure));
  } else if (failure.file == FileVerdict::Type::holdsClass) {
    outcome.skipped = std::move(failure);
  } else {
    outcome.hasNoClass = true;
  }
}

ClassOutcome ClassUpdater::makeServiceOutcome(PlannedClass& planned) const {
  const OutcomeNeeds& needs = request_.needs;
  ClassOutcome outcome;
  ClassUpdate& update = outcome.update;
  update = describeUpdate(planned, needs.places);
  if (needs.text) outcome.text = to_string(planned.text());
  if (needs.hints) outcome.hints = hintsOnSuperClasses(update.className, *roots_, words());
  if (update.hasNewText()) {
    const Phase phase(checksPhase);
    if (needs.conversions) update.conversions = describeConversions(planned);
    checkUpdate(planned, families(), {.analysis = needs.editsOfEach, .actions = needs.edits},
                update);
    if (update.isRefused()) update.conversions.clear();
  }
  if (!update.hasNewText() && !needs.edits) return outcome;
  const UpdatedText text{&update.file, *planned.oldText, planned.text(), &planned.oldFile};
  addFile(text, outcome);
  if (!needs.edits || !update.hasNewText()) return outcome;
  const fl::EncodingType encoding = outcome.file.bytes->encoding;
  outcome.file.edits = findFileEdits(planned, encoding).edits;
  if (needs.editsOfEach) findEditsOfEach(planned, encoding, update.conversions);
  return outcome;
}

PassNeeds ClassUpdater::passNeeds(const PlannedClass& planned) const {
  const OutcomeNeeds& needs = request_.needs;
  const bool hasSelection = request_.limits.selection != nullptr;
  PassNeeds passNeeds{.conversions = needs.conversions || hasSelection,
                      .editsOfEach = std::nullopt,
                      .changes = needs.edits || needs.conversions || hasSelection,
                      .places = needs.places};
  if (needs.editsOfEach) {
    const std::string path = to_string(planned.result.fileName);
    passNeeds.editsOfEach =
        oldFileOf({&path, *planned.oldText, *planned.oldText, &planned.oldFile}).encoding;
  }
  return passNeeds;
}

bool ClassUpdater::isOutdated(const PlannedClass& planned) const {
  const ConversionSelection* selection = request_.limits.selection;
  if (selection == nullptr || !selection->ids) return false;
  const auto chosen = selection->ids->findClass(to_string(planned.result.className));
  if (!chosen) return false;
  const std::string path = to_string(planned.result.fileName);
  const UpdatedText text{&path, *planned.oldText, *planned.oldText, &planned.oldFile};
  const std::string bytes = makeBytes(path, text.oldText, oldFileOf(text).encoding);
  return sha256(bytes) != selection->ids->sha256Of(*chosen);
}

ClassPasses ClassUpdater::makePasses(PlannedClass planned, const PassNeeds& needs,
                                     const std::vector<PassView>* views, PassFacts* facts,
                                     std::vector<PassRecord>& records) const {
  if (facts != nullptr) *facts = findPassFacts(planned);
  const bool isOutdated = this->isOutdated(planned);
  ClassPasses passes(std::move(planned), &request_.limits, needs);
  if (isOutdated) passes.setOutdated();
  static const std::vector<PassView> alone = {PassView()};
  const auto& all = views != nullptr ? *views : alone;
  makeAllPasses(passes, all, facts != nullptr ? &facts->names : nullptr, records);
  if (facts != nullptr) {
    facts->changedMethods = passes.changedMethods();
    facts->takenMethods = passes.takenMethods();
  }
  return passes;
}

ClassOutcome ClassUpdater::makeOutcome(PlannedClass planned, const std::vector<PassView>* views,
                                       std::vector<PassRecord>& records) const {
  const Phase phase(checksPhase);
  const OutcomeNeeds& needs = request_.needs;
  const std::optional<fl::filesystem::FileState> oldFile = planned.oldFile;
  ClassOutcome outcome;
  PassFacts* const facts = needs.facts ? &outcome.facts : nullptr;
  const PassNeeds passNeeds = this->passNeeds(planned);
  ClassPasses passes = makePasses(std::move(planned), passNeeds, views, facts, records);
  ClassUpdate& update = outcome.update;
  update = passes.takeUpdate();
  ca::forgetLastAnalysis();
  if (needs.text) outcome.text = to_string(*passes.text());
  if (needs.hints) outcome.hints = hintsOnSuperClasses(update.className, *roots_, words());
  if (needs.hunks) {
    outcome.file.hunks = makeHunks(*passes.oldText(), passes.changes(), reportedLines(update));
  }
  const bool needsIdentity = needs.edits || (needs.identity && !update.conversions.empty());
  if (!update.hasNewText() && !needsIdentity) return outcome;
  addFile({&update.file, *passes.oldText(), *passes.text(), &oldFile}, outcome);
  if (needs.edits && update.hasNewText()) {
    outcome.file.edits =
        placeChanges(*passes.oldText(), passes.changes(), outcome.file.bytes->encoding);
  }
  return outcome;
}

fl::filesystem::FileState ClassUpdater::oldFileOf(const UpdatedText& text) const {
  if (request_.overlaidFile != nullptr) return *request_.overlaidFile;
  return stateOfOldFile(*text.path, *text.oldFile, text.oldText,
                        request_.needs.newBytes ? StampType::sure : StampType::any);
}

void ClassUpdater::addFile(const UpdatedText& text, ClassOutcome& outcome) const {
  const Phase phase(diffPhase);
  const OutcomeNeeds& needs = request_.needs;
  const std::string& path = *text.path;
  FileUpdate& file = outcome.file;
  const fl::filesystem::FileState old = oldFileOf(text);
  file.stamp = old.stamp;
  const auto bytesOf = [&](fl::ustring_view each) { return makeBytes(path, each, old.encoding); };
  if (needs.edits || needs.identity) {
    file.bytes =
        FileBytes{sha256(bytesOf(text.oldText)), old.encoding, text.oldText.starts_with(u'\uFEFF')};
  }
  if (!outcome.update.hasNewText()) return;
  if (needs.diff || needs.newBytes) {
    file.newBytes = bytesOf(text.newText);
  } else {
    checkIsEncodable(path, text.newText, old.encoding);
  }
  if (request_.overlaidFile == nullptr) checkIsReplaceable(path);
  if (needs.diff) {
    file.diff = unifiedDiff(names_->inDiff(path), bytesOf(text.oldText), file.newBytes);
  }
  if (!needs.newBytes) file.newBytes = {};
}

}  // namespace soca
