#include "conversions/ClassUpdate.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "conversions/Findings.h"
#include "model/NameIndex.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using fl::i18n::to_string;

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

// Lists the methods that are renamed or deleted.
MethodNameChanges findChangedMethods(const std::vector<DeclaredMethod>& before,
                                     const ca::AnalysisResult& updated) {
  const auto after = declaredMethods(updated);
  return {namesWithout(after, before), namesWithout(before, after)};
}

// Updates the new text once more.
RepeatedUpdate updateAgain(const PlannedClass& planned, UpdateMask rules) {
  const fl::filesystem::OverlayScope overlay(to_string(planned.result.fileName), planned.newText);
  try {
    return repeatUpdate(planned.result.className, rules);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    // For any failure of the second update, the text counts as changed.
    return {ca::analyzeText(fl::ustring(planned.text())), true};
  }
}

}  // namespace

ClassUpdate describeUpdate(const PlannedClass& planned, FindingPlacesType places) {
  ClassUpdate update;
  update.className = to_string(planned.result.className);
  update.file = to_string(planned.result.fileName);
  update.updated = planned.result.updated;
  update.changed = planned.result.updated && !fl::areEqualTexts(planned.text(), *planned.oldText);
  update.hasByteOrderMark = planned.oldText->starts_with(u'\uFEFF');
  update.findings = describeFindings(planned, places);
  for (const RuleConversion& each : planned.conversions) ++update.conversionCounts[each.kind];
  return update;
}

void checkUpdate(PlannedClass& planned, UpdateMask rules, PlanNeeds needs, ClassUpdate& update) {
  const NewTextCheck check(planned);
  const bool editsMethods = std::ranges::any_of(
      planned.conversions, [](const RuleConversion& each) { return each.method != nullptr; });
  std::vector<DeclaredMethod> methods;
  if (editsMethods) methods = declaredMethods(*planned.analysis);
  // The tree of the old text is freed before that of the new one is made, which may be three times
  // as large. The names of the methods point into the text.
  if (!needs.analysis) planned.analysis.reset();
  if (!needs.actions) std::vector<PlannedAction>().swap(planned.actions);
  {
    const RepeatedUpdate second = updateAgain(planned, rules);
    if (auto reason = check.findReasonToRefuse(*second.analysis)) {
      update.refusal = std::move(*reason);
      return;
    }
    update.changesAgain = second.changesAgain;
    if (editsMethods) update.methods = findChangedMethods(methods, *second.analysis);
  }
  ca::forgetLastAnalysis();
}

}  // namespace soca
