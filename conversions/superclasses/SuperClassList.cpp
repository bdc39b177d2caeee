#include "conversions/superclasses/SuperClassList.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>

#include "platform/analyzer/tree/Ast.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "platform/text/UString.h"

namespace soca {
namespace {

constexpr fl::ustring_view systemBase = u"velum.System";

bool isInName(char16_t unit) { return unit != u' ' && unit != u'\n' && unit != u'&'; }

// Whether one of the names in the text of a list is that of the system base.
bool namesSystemBase(fl::ustring_view list) {
  for (std::size_t at = list.find(systemBase); at != fl::ustring_view::npos;
       at = list.find(systemBase, at + 1)) {
    const std::size_t end = at + systemBase.size();
    if ((at == 0 || !isInName(list[at - 1])) && (end == list.size() || !isInName(list[end]))) {
      return true;
    }
  }
  return false;
}

// Whether the rewritten list has the system base, and the old one has not.
bool addsSystemBase(const PlannedAction& rewriting, const ca::astapi::Classdef& classdef) {
  const auto isSystemBase = [](const ca::astapi::Identifier* superClass) {
    return superClass->text.view() == systemBase;
  };
  return namesSystemBase(rewriting.edits.front().text) &&
         std::ranges::none_of(classdef.superClasses, isSystemBase);
}

// The action that rewrites the list; null if there is none.
const PlannedAction* findRewriting(const PlannedClass& planned) {
  const auto rewriting =
      std::ranges::find(planned.actions, RuleFamilyType::mixins, &PlannedAction::family);
  return rewriting == planned.actions.end() ? nullptr : &*rewriting;
}

}  // namespace

std::optional<UnresolvedSuperClass> findUnresolvedInList(const PlannedClass& planned) {
  const PlannedAction* rewriting = findRewriting(planned);
  if (rewriting == nullptr) return std::nullopt;
  const std::string className = fl::i18n::to_string(planned.result.className);
  if (namesOnlyEnvironment(className)) return std::nullopt;
  const auto unknown = Ancestry(className).unknown();
  const bool restsOnAll = addsSystemBase(*rewriting, *planned.analysis->getClassdef());
  const auto missing = std::ranges::find_if(unknown, [&](const auto& each) {
    return restsOnAll || (each.namedBy == className && !each.isPFile);
  });
  if (missing == unknown.end()) return std::nullopt;
  return UnresolvedSuperClass{placeInSuperClassList(*planned.analysis, missing->name), *missing};
}

std::string describeUnresolved(const UnresolvedSuperClass& unresolved) {
  const Ancestry::Missing& missing = unresolved.missing;
  const std::string orRoot =
      missing.isPFile ? "" : fmt::format("name the root of '{}' with --path, or ", missing.name);
  return fmt::format(
      "{}, so it is not known what its list of superclasses has to be; {}list in a class table "
      "what it derives from",
      describeMissing(missing), orRoot);
}

bool addsSystemBaseBeside(const PlannedClass& planned) {
  const PlannedAction* rewriting = findRewriting(planned);
  return rewriting != nullptr && rewriting->edits.front().text != systemBase &&
         addsSystemBase(*rewriting, *planned.analysis->getClassdef());
}

LinePlace placeInSuperClassList(const ca::AnalysisResult& analysis, std::string_view name) {
  const auto classdef = analysis.getClassdef();
  if (classdef == nullptr || classdef->superClasses.empty()) return {};
  const auto wanted = fl::i18n::to_ustring(name);
  const auto& list = classdef->superClasses;
  const auto* const found = std::ranges::find_if(
      list,
      [&](const ca::astapi::Identifier* superClass) { return superClass->text.view() == wanted; });
  return placeOfName(analysis, found != list.end() ? **found : *list.front());
}

}  // namespace soca
