#include "conversions/passes/ClassPasses.h"

#include <fmt/core.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>
#include <utility>

#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "conversions/ConversionEdits.h"
#include "conversions/Findings.h"
#include "conversions/passes/PositionMap.h"
#include "conversions/risk/RiskJudge.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/failure/Exception.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using fl::filesystem::OverlayScope;
using fl::i18n::to_string;

fl::ustring memberOf(const RuleConversion& conversion) {
  if (conversion.method != nullptr) return conversion.method->name->text.getText();
  if (conversion.property != nullptr) return conversion.property->name->text.getText();
  return {};
}

bool deletesMethod(const RuleConversion& conversion) {
  return conversion.method != nullptr && conversion.newName.empty();
}

// "class 'a.B' refers to it, class 'a.C' overrides it"; empty if nothing uses the method.
std::string describeUsers(const RuleConversion& conversion, const std::vector<MethodUse>& uses) {
  std::string text;
  for (const MethodUse& use : uses) {
    if (conversion.method->name->text.view() != use.method) continue;
    text += fmt::format("{}{}", text.empty() ? "" : ", ", use.text);
  }
  return text;
}

void addReason(RiskType type, ConversionReason reason, ConversionRisk& risk) {
  if (type > risk.type) {
    risk.type = type;
    risk.reasons.insert(risk.reasons.begin(), std::move(reason));
  } else {
    risk.reasons.push_back(std::move(reason));
  }
}

std::size_t offsetOf(const ca::AnalysisResult& analysis, const SourcePosition& place) {
  const std::uint64_t rest = analysis.sourceTextView().size();
  // The column may be one that stands for the end of the line.
  return std::min(
      analysis.lineStart(static_cast<std::uint32_t>(place.line)) + std::min(place.column, rest),
      rest);
}

// Whether an edit replaces text that names a method, other than by the name of a declaration.
bool mayDeleteReferences(const PlannedClass& planned) {
  const ca::AnalysisResult& analysis = *planned.analysis;
  const auto mayDelete = [&](const PlannedEdit& edit) {
    const std::size_t start = offsetOf(analysis, edit.extent.start);
    const std::size_t end = offsetOf(analysis, edit.extent.end);
    return start < end && mayNameMethods(analysis.sourceTextView().substr(start, end - start));
  };
  return std::ranges::any_of(planned.actions, [&](const PlannedAction& action) {
    return std::ranges::any_of(action.edits, [&](const PlannedEdit& edit) {
      return (action.family != RuleFamilyType::impl || edit.text.empty()) && mayDelete(edit);
    });
  });
}

std::vector<Conversion> describeAll(const PlannedClass& planned) {
  std::vector<Conversion> conversions = describeConversions(planned);
  const auto needs = findNeeds(planned);
  for (std::size_t i = 0; i < conversions.size(); ++i) {
    if (needs[i] != i) conversions[i].needs.push_back(conversions[needs[i]].id);
  }
  return conversions;
}

Extent extentOf(const LinePlace& place) {
  return {{place.line - 1, place.column - 1}, {place.endLine - 1, place.endColumn - 1}};
}

}  // namespace

ClassPasses::ClassPasses(PlannedClass first, const ChoiceLimits* limits, const PassNeeds& needs,
                         PassHistory history)
    : limits_(limits),
      needs_(needs),
      file_(to_string(first.result.fileName)),
      oldText_(first.oldText),
      text_(first.oldText),
      history_(std::move(history)),
      planned_(std::move(first)) {
  update_.className = to_string(planned_.result.className);
  update_.file = file_;
  update_.hasByteOrderMark = oldText_->starts_with(u'\uFEFF');
}

// --- one pass ---

bool ClassPasses::makePass(const std::vector<MethodUse>& uses) {
  return makePass(history_.pass + 1, uses);
}

bool ClassPasses::makePass(unsigned pass, const std::vector<MethodUse>& uses) {
  history_.pass = pass;
  leftOut_.clear();
  isLaidApart_ = false;
  foundMethods_ = 0;
  for (const RuleConversion& each : planned_.conversions) {
    if (each.method != nullptr) foundMethods_ |= methodSetOf(each.method->name->text.view());
  }
  if (planned_.conversions.empty()) return false;
  std::optional<OverlayScope> overlay;
  if (isChanged()) overlay.emplace(file_, text_);
  checkSettling();
  risks_ = judge(planned_, uses);
  if (limits_->selection != nullptr) wishes_ = wish();
  if (mayMakeWhole()) {
    if (makeWhole()) return true;
    if (!faulty_) planAgain();
  }
  return makeChosen(uses);
}

bool ClassPasses::planNext() {
  const OverlayScope overlay(file_, text_);
  ClassPlan plan =
      planClassOnce(planned_.result.className, planned_.mask, false, optionsOf(planned_));
  ca::forgetLastAnalysis();
  if (plan.failure) {
    try {
      std::rethrow_exception(plan.failure);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      // In a cycle of superclasses, the mixin may have been all that made it a System object.
      planned_ = {};
      leftOut_.clear();
      return false;
    }
  }
  planned_ = std::move(*plan.planned);
  return true;
}

// Each pass removes an old form, and what it writes is at most once an old form itself.
void ClassPasses::checkSettling() {
  constexpr unsigned usual = 100;
  if (history_.changes <= usual) return;
  const std::size_t forms = planned_.analysis->getClassdef()->members.size() +
                            2 * declaredProperties(*planned_.analysis).size() +
                            2 * declaredMethods(*planned_.analysis).size();
  history_.forms = std::max(history_.forms, forms);
  if (history_.changes > 2 * (history_.forms + usual)) throw NotSettled();
}

// Nothing that a conversion writes is a reference to a method.
MethodNames ClassPasses::findPresentNames(const MethodNames& before) const {
  const auto find = [&](const ca::AnalysisResult& analysis) {
    return findMethodNames(analysis, before.referred, mayLoseReferences_);
  };
  if (planned_.analysis != nullptr) return find(*planned_.analysis);
  const OverlayScope overlay(file_, text_);
  return find(*ca::analyzeFile(file_));
}

bool ClassPasses::isLarge() const {
  constexpr std::size_t large = std::size_t{256} << 10U;  // code units
  return planned_.newText->size() > large;
}

// The plan of this pass once more, with everything in it.
void ClassPasses::planAgain() {
  std::optional<OverlayScope> overlay;
  if (isChanged()) overlay.emplace(file_, text_);
  const PlannedClass spent = std::move(planned_);
  planned_ =
      std::move(planUpdate(spent.result.className, spent.mask, false, optionsOf(spent)).front());
}

std::vector<ConversionRisk> ClassPasses::judge(const PlannedClass& planned,
                                               const std::vector<MethodUse>& uses) const {
  std::vector<ConversionRisk> risks = judgeRisks(planned);
  for (std::size_t i = 0; i < risks.size(); ++i) {
    const RuleConversion& conversion = planned.conversions[i];
    if (conversion.method == nullptr) continue;
    if (auto users = describeUsers(conversion, uses); !users.empty()) {
      addReason(RiskType::unsafe, {"soca:UsedElsewhere", std::move(users), {}}, risks[i]);
    }
    if (followsDeletion(conversion)) {
      addReason(RiskType::unsafe,
                {"soca:FollowsDeletion", "an earlier pass deleted a method that prevented it", {}},
                risks[i]);
    }
  }
  return risks;
}

// Whether the method takes the name of one that an earlier pass deleted. Whatever else a deletion
// makes possible is as right as in the next run, which would know nothing of the deletion.
bool ClassPasses::followsDeletion(const RuleConversion& conversion) const {
  const auto& deleted = history_.deletedMethods;
  return !conversion.newName.empty() &&
         std::ranges::find(deleted, conversion.newName) != deleted.end();
}

// The ids that were selected are those of the text as it was read.
std::vector<Wish> ClassPasses::wish() {
  if (!numbers_) numbers_.emplace(*planned_.analysis);
  std::vector<Conversion> all = describeConversions(planned_);
  std::vector<Finding> none;
  moveToOldText(all, none);
  return findWishes(all, findNeeds(planned_), {update_.className, isOutdated_}, *limits_->selection,
                    limits_->highestRisk);
}

RiskType ClassPasses::highestRiskOf(std::size_t conversion) const {
  return wishes_.empty() ? limits_->highestRisk : wishes_[conversion].highestRisk;
}

// Whether all conversions are wanted and can be applied, as is so for the usual class.
bool ClassPasses::mayMakeWhole() const {
  if (!planned_.faults.empty() || planned_.newText == nullptr) return false;
  if (history_.analyses >= mostAnalyses) return false;
  for (std::size_t i = 0; i < risks_.size(); ++i) {
    if (!wishes_.empty() && wishes_[i].leftOut) return false;
    if (risks_[i].type > highestRiskOf(i)) return false;
    if (!limits_->rules.kinds[planned_.conversions[i].kind]) return false;
  }
  return true;
}

// Returns false if the new text has faults.
bool ClassPasses::makeWhole() {
  const NewTextCheck check(planned_);
  const std::shared_ptr<const fl::ustring> newText = planned_.newText;
  const ca::KnownFunctions known = planned_.analysis->knownFunctions();
  std::optional<Record> record;
  if (isLarge()) {
    // The tree of the old text is freed before that of the new one is made, which may be three
    // times as large.
    record = recordOf(planned_, LeftOut(planned_.conversions.size()));
    planned_.analysis.reset();
    std::vector<PlannedAction>().swap(planned_.actions);
  }
  FaultyText faulty;
  {
    const OverlayScope overlay(file_, newText);
    faulty.updated = ca::analyzeFile(file_, &known);
  }
  ++history_.analyses;
  if (auto fault = check.findFault(*faulty.updated)) {
    faulty.fault = std::move(*fault);
    if (!record) faulty_ = std::move(faulty);
    return false;
  }
  if (!record) record = recordOf(planned_, LeftOut(planned_.conversions.size()));
  lines_.add(std::move(planned_.newLines), planned_.oldText);
  take(std::move(*record), newText);
  return true;
}

bool ClassPasses::makeChosen(const std::vector<MethodUse>& uses) {
  ChosenConversions chosen =
      chooseConversions(std::move(planned_), risks_, wishes_, *limits_, history_.analyses, nullptr,
                        std::exchange(faulty_, std::nullopt));
  history_.analyses += chosen.analyses;
  planned_ = std::move(chosen.planned);
  leftOut_ = std::move(chosen.leftOut);
  if (planned_.newText == nullptr) return layApart(uses);
  takeChosen();
  return true;
}

void ClassPasses::takeChosen() {
  Record record = recordOf(planned_, leftOut_);
  lines_.add(std::move(planned_.newLines), planned_.oldText);
  take(std::move(record), planned_.newText);
}

// --- lines that are laid apart ---

// Lays lines apart only once nothing else can be made, because another conversion of a crowded line
// may need no layout.
bool ClassPasses::layApart(const std::vector<MethodUse>& uses) {
  if (!limits_->mayLayApart) return false;
  const auto judgeAgain = [&](const PlannedClass& planned) { return judge(planned, uses); };
  LayoutSearch search(&planned_, limits_, &wishes_, judgeAgain, history_.analyses);
  std::optional<LaidApart> laid = search.search(leftOut_);
  while (laid && leaveOutForLayout(*laid)) laid = search.search(leftOut_);
  history_.analyses += search.analyses();
  if (!laid) return false;
  takeLayout(std::move(*laid));
  return true;
}

void ClassPasses::takeLayout(LaidApart laid) {
  leftOut_ = std::move(laid.chosen.leftOut);
  std::vector<std::uint32_t> numbers(leftOut_.size());
  auto next = static_cast<std::uint32_t>(update_.conversions.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (!leftOut_[i]) numbers[i] = next++;
  }
  const TextChanges changes = findLayoutChanges(laid, numbers);
  moveKeptPlaces(changes);
  if (isFirst_ && needs_.conversions) numbers_.emplace(*planned_.analysis);
  if (keepsChanges()) changes_ = composeChanges(*oldText_, changes_, changes);
  isFirst_ = false;
  lines_.add(std::move(laid.lines), planned_.oldText);
  text_ = std::move(laid.text);
  planned_ = std::move(laid.chosen.planned);
  risks_ = std::move(laid.risks);
  isLaidApart_ = true;
  hasLayout_ = true;
  takeChosen();
}

// Where the layout is too risky, that is the reason. Returns whether it is for any conversion.
bool ClassPasses::leaveOutForLayout(const LaidApart& laid) {
  bool isAny = false;
  for (std::size_t i = 0; i < leftOut_.size(); ++i) {
    if (laid.chosen.leftOut[i] || highestRiskOf(i) >= RiskType::review) continue;
    leftOut_[i] = reasonForLayout(laid, i, *planned_.oldText);
    addReason(RiskType::review, *leftOut_[i], risks_[i]);
    isAny = true;
  }
  return isAny;
}

// --- the result ---

ClassPasses::Record ClassPasses::recordOf(const PlannedClass& planned, const LeftOut& leftOut) {
  Record record;
  for (std::size_t i = 0; i < planned.conversions.size(); ++i) {
    const RuleConversion& each = planned.conversions[i];
    if (leftOut[i]) continue;
    ++record.counts[each.kind];
    if (each.method != nullptr) {
      const fl::ustring_view name = each.method->name->text.view();
      record.changedMethods |= methodsChangedBy(each.kind, name);
      record.takenMethods |= methodSetOf(name);
    }
    if (deletesMethod(each)) record.deletedMethods.push_back(memberOf(each));
  }
  record.mayLoseReferences = mayDeleteReferences(planned);
  describeInto(planned, leftOut, record);
  return record;
}

void ClassPasses::describeInto(const PlannedClass& planned, const LeftOut& leftOut,
                               Record& record) {
  std::vector<std::uint32_t> numbers(planned.conversions.size());
  if (needs_.conversions || isLaidApart_) {
    if (isFirst_ && !numbers_) numbers_.emplace(*planned.analysis);
    std::vector<Conversion> all = describeAll(planned);
    if (needs_.editsOfEach && history_.pass == 1 && !isLaidApart_)
      findEditsOfEach(planned, *needs_.editsOfEach, all);
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (leftOut[i]) continue;
      all[i].risk = risks_[i];
      if (!needs_.conversions && all[i].findLaidApart() == nullptr) continue;
      numbers[i] =
          static_cast<std::uint32_t>(update_.conversions.size() + record.conversions.size());
      all[i].pass = history_.pass;
      record.conversions.push_back(std::move(all[i]));
    }
  }
  const bool hasFindings = std::ranges::any_of(planned.findings, [](const RuleFinding& finding) {
    return finding.conversion != noConversion;
  });
  if (hasFindings) {
    std::vector<Finding> all = describeFindings(planned, needs_.places);
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (planned.findings[i].conversion == noConversion) continue;
      all[i].newPlace = all[i];
      for (RelatedPlace& place : all[i].related) place.newPlace = place;
      record.findings.push_back(std::move(all[i]));
    }
  }
  moveToOldText(record.conversions, record.findings);
  const bool movesPlaces = !record.findings.empty() || !update_.findings.empty() || hasLayout_;
  if (keepsChanges() || movesPlaces) record.changes = findTextChanges(planned, numbers);
}

void ClassPasses::take(Record record, std::shared_ptr<const fl::ustring> newText) {
  isFirst_ = false;
  ++history_.changes;
  mayLoseReferences_ = record.mayLoseReferences;
  changedMethods_ |= record.changedMethods;
  takenMethods_ |= record.takenMethods;
  for (const ConversionKind& kind : conversionKinds) {
    update_.conversionCounts[kind.type] += record.counts[kind.type];
  }
  std::ranges::move(record.conversions, std::back_inserter(update_.conversions));
  std::ranges::move(record.findings, std::back_inserter(update_.findings));
  std::ranges::move(record.deletedMethods, std::back_inserter(history_.deletedMethods));
  moveKeptPlaces(record.changes);
  if (keepsChanges()) {
    changes_ = changes_.empty() ? std::move(record.changes)
                                : composeChanges(*oldText_, changes_, record.changes);
  }
  update_.updated = true;
  text_ = std::move(newText);
}

// Those of findings about conversions that were made, and of lines that were laid apart, from the
// text before a pass to the one after it. Rare, so exact, unlike the lines that a LineMap knows.
void ClassPasses::moveKeptPlaces(const TextChanges& changes) {
  if (update_.findings.empty() && !hasLayout_) return;
  const PositionMap map(*text_, changes);
  const auto move = [&](LinePlace& place) { place = map.toNew(place).value_or(LinePlace()); };
  for (Finding& each : update_.findings) {
    move(each.newPlace);
    for (RelatedPlace& place : each.related) move(place.newPlace);
  }
  for (Conversion& each : update_.conversions) {
    if (each.findLaidApart() == nullptr) continue;
    for (RelatedPlace& place : each.risk.reasons.back().places) move(place.newPlace);
  }
}

// Only exact places show to which declaration of a name a conversion of a later pass belongs.
bool ClassPasses::keepsChanges() const {
  return needs_.changes || (numbers_ && numbers_->haveDuplicates());
}

void ClassPasses::moveToOldText(std::vector<Conversion>& conversions,
                                std::vector<Finding>& findings) {
  if (!isChanged() || (conversions.empty() && findings.empty())) return;
  std::optional<PositionMap> map;
  if (keepsChanges()) map.emplace(*oldText_, changes_);
  const auto toOld = [&](LinePlace& place) {
    place = map ? map->toOld(place) : lines_.toOld(place);
  };
  const auto relatedToOld = [&](RelatedPlace& place) {
    place.newPlace = place;
    toOld(place);
  };
  for (Conversion& each : conversions) {
    LinePlace place = placeOf(each.place);
    if (each.leftOut) each.newPlace = place;
    toOld(place);
    each.place = extentOf(place);
    if (numbers_) numbers_->correct(each);
    for (ConversionReason& reason : each.risk.reasons) {
      std::ranges::for_each(reason.places, relatedToOld);
    }
    if (each.leftOut) std::ranges::for_each(each.leftOut->places, relatedToOld);
  }
  for (Finding& each : findings) {
    each.newPlace = each;
    toOld(each);
    std::ranges::for_each(each.related, relatedToOld);
  }
}

// What the last pass reports, which changed nothing.
void ClassPasses::addLastPass() {
  std::vector<Conversion> left;
  if (!leftOut_.empty()) {
    left = describeAll(planned_);
    for (std::size_t i = 0; i < left.size(); ++i) {
      left[i].risk = risks_[i];
      left[i].pass = 0;
      left[i].leftOut = leftOut_[i];
      ++update_.leftOutCounts[left[i].kind];
    }
  }
  std::vector<Finding> findings;
  if (!planned_.findings.empty()) findings = describeFindings(planned_, needs_.places);
  moveToOldText(left, findings);
  std::ranges::move(left, std::back_inserter(update_.conversions));
  std::ranges::move(findings, std::back_inserter(update_.findings));
}

ClassUpdate ClassPasses::takeUpdate() {
  addLastPass();
  update_.changed = isChanged() && !fl::areEqualTexts(*text_, *oldText_);
  if (update_.findings.size() > 1) {
    std::ranges::stable_sort(update_.findings, {},
                             [](const Finding& each) { return std::pair(each.line, each.column); });
  }
  return std::move(update_);
}

}  // namespace soca
