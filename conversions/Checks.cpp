#include "conversions/Checks.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "conversions/ClassMembers.h"
#include "conversions/KeptText.h"
#include "model/AnalyzerPositions.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using fl::i18n::to_string;

// The edits of one family, without insertions, by their start.
class EditsByStart {
 public:
  EditsByStart(const PlannedClass& planned, RuleFamilyType family) {
    for (const PlannedAction& action : planned.actions) {
      if (action.family != family) continue;
      for (const PlannedEdit& edit : action.edits) {
        if (edit.extent.start != edit.extent.end) edits_.push_back(&edit);
      }
    }
    // Of two edits with the same start the one made first is used.
    std::ranges::stable_sort(edits_, {}, startOf);
    const auto same = std::ranges::unique(edits_, {}, startOf);
    edits_.erase(same.begin(), same.end());
  }

  bool empty() const { return edits_.empty(); }

  // The edit of exactly this extent, or null.
  const PlannedEdit* of(const Extent& extent) const {
    const PlannedEdit* edit = lastAt(extent.start);
    return edit != nullptr && edit->extent == extent ? edit : nullptr;
  }

  // The last edit that begins at or before the place, or null.
  const PlannedEdit* lastAt(const SourcePosition& place) const {
    const auto after = std::ranges::upper_bound(edits_, place, {}, startOf);
    return after != edits_.begin() ? *(after - 1) : nullptr;
  }

 private:
  static const SourcePosition& startOf(const PlannedEdit* edit) { return edit->extent.start; }

  std::vector<const PlannedEdit*> edits_;
};

bool holdsItsQuote(const sotarn::ConstrainedSetInfo& set) {
  const char16_t quote = set.valueType == 2 ? u'"' : u'\'';
  return std::ranges::any_of(set.values, [quote](const fl::ustring& value) {
    return value.find(quote) != fl::ustring::npos;
  });
}

std::optional<std::string> checkSyntax(const ca::AnalysisResult& updated) {
  if (!updated.hasSyntaxError()) return std::nullopt;
  if (updated.diagnostics().empty()) return "the new text would have a syntax error";
  const ca::Diagnostic& first = updated.diagnostics().front();
  return fmt::format("the new text would have a syntax error in line {}, column {}: {}",
                     first.line + 1, first.column + 1, first.message);
}

}  // namespace

NewTextCheck::NewTextCheck(const PlannedClass& planned)
    : className_(to_string(planned.result.className)),
      lostText_(findLostText(*planned.oldText, planned.text(), planned.actions)) {
  expectProperties(planned);
  expectMethods(planned);
}

std::optional<NewTextFault> NewTextCheck::findFault(const ca::AnalysisResult& updated) const {
  using enum NewTextFault::Type;
  if (auto text = checkSyntax(updated)) return NewTextFault{syntaxError, std::move(*text), {}, {}};
  auto text = checkProperties(updated);
  if (!text) text = checkMethods(updated);
  if (text) return NewTextFault{otherMembers, std::move(*text), findOtherMembers(updated), {}};
  if (lostText_) return NewTextFault{lostText, lostText_->text, {}, lostText_->line};
  return std::nullopt;
}

std::optional<std::string> NewTextCheck::findReasonToRefuse(
    const ca::AnalysisResult& updated) const {
  auto fault = findFault(updated);
  return fault ? std::optional(std::move(fault->text)) : std::nullopt;
}

// Compares the declarations by name and not in their order, so that one that is lost does not make
// all later ones differ.
std::vector<fl::ustring> NewTextCheck::findOtherMembers(const ca::AnalysisResult& updated) const {
  std::vector<fl::ustring> names;
  std::unordered_map<fl::ustring_view, fl::ustring_view> found;
  for (const DeclaredProperty& each : declaredProperties(updated)) {
    found.emplace(each.name, each.defaultText);
  }
  for (const Property& expected : properties_) {
    const auto place = found.find(expected.name);
    const bool isKept = place != found.end() &&
                        (expected.defaultText.empty() || place->second == expected.defaultText);
    if (!isKept) names.emplace_back(expected.name);
  }
  std::unordered_set<fl::ustring_view> methods;
  for (const DeclaredMethod& each : declaredMethods(updated)) methods.insert(each.name);
  std::ranges::copy_if(methods_, std::back_inserter(names),
                       [&](const fl::ustring& each) { return !methods.contains(each); });
  visitDeletedSets([&](const std::string& name, const sotarn::ConstrainedSetInfo& set) {
    if (holdsItsQuote(set)) names.push_back(fl::i18n::to_ustring(name));
  });
  return names;
}

// --- properties ---

void NewTextCheck::expectProperties(const PlannedClass& planned) {
  const EditsByStart edits(planned, RuleFamilyType::attributes);
  const auto isDeleted = [&](const DeclaredProperty& property) {
    if (edits.empty()) return false;
    const Extent extent = makeExtentOfNode(*planned.analysis, *property.node);
    const PlannedEdit* edit = edits.lastAt(extent.start);
    return edit != nullptr && edit->text.empty() && extent.end <= edit->extent.end;
  };
  const auto declared = declaredProperties(*planned.analysis);
  properties_.reserve(declared.size());
  for (const DeclaredProperty& property : declared) {
    if (isDeleted(property)) {
      deleted_.insert(property.name);
    } else {
      properties_.push_back({property.name, property.defaultText});
    }
  }
}

std::optional<std::string> NewTextCheck::checkProperties(const ca::AnalysisResult& updated) const {
  const auto found = declaredProperties(updated);
  auto next = found.begin();
  for (const Property& property : properties_) {
    if (next == found.end() || !fl::areEqualTexts(next->name, property.name)) {
      return fmt::format("property '{}' would get lost", to_string(property.name));
    }
    if (!property.defaultText.empty() &&
        !fl::areEqualTexts(next->defaultText, property.defaultText)) {
      return fmt::format("the default value of property '{}' would change",
                         to_string(property.name));
    }
    ++next;
  }
  if (next != found.end()) {
    return fmt::format("a property '{}' would be added", to_string(next->name));
  }
  return checkDeleted();
}

// Only companions of sets may be deleted, and their values must be valid between the quotes of the
// new declarations.
std::optional<std::string> NewTextCheck::checkDeleted() const {
  if (deleted_.empty()) return std::nullopt;
  std::unordered_set<fl::ustring_view> others = deleted_;
  std::optional<std::string> reason;
  visitDeletedSets([&](const std::string& name, const sotarn::ConstrainedSetInfo& set) {
    others.erase(set.setPropertyName);
    if (!reason && holdsItsQuote(set)) {
      reason = fmt::format("a value in the set of property '{}' has a quote in it", name);
    }
  });
  if (reason || others.empty()) return reason;
  return fmt::format("property '{}' would be deleted", to_string(*others.begin()));
}

template <class Visit>
void NewTextCheck::visitDeletedSets(const Visit& visit) const {
  const auto description = sotarn::describeClass(className_);
  if (deleted_.empty() || description == nullptr) return;
  for (const auto& [name, property] : description->properties) {
    if (property.constrainedSet == nullptr) continue;
    if (deleted_.contains(property.constrainedSet->setPropertyName)) {
      visit(name, *property.constrainedSet);
    }
  }
}

// --- methods ---

// The names of the methods after the actions.
void NewTextCheck::expectMethods(const PlannedClass& planned) {
  const EditsByStart edits(planned, RuleFamilyType::impl);
  const auto editOf = [&](const ca::astapi::Node& node) {
    return edits.empty() ? nullptr : edits.of(makeExtentOfNode(*planned.analysis, node));
  };
  for (const DeclaredMethod& method : declaredMethods(*planned.analysis)) {
    const PlannedEdit* deletion = editOf(*method.node);
    if (deletion != nullptr && deletion->text.empty()) continue;
    const PlannedEdit* renaming = editOf(*method.node->name);
    methods_.emplace_back(renaming != nullptr ? fl::ustring_view(renaming->text) : method.name);
  }
}

std::optional<std::string> NewTextCheck::checkMethods(const ca::AnalysisResult& updated) const {
  const auto found = declaredMethods(updated);
  const auto [missing, other] =
      std::ranges::mismatch(methods_, found, fl::areEqualTexts, {}, &DeclaredMethod::name);
  if (missing != methods_.end()) {
    return fmt::format("method '{}' would get lost", to_string(*missing));
  }
  if (other != found.end()) {
    return fmt::format("a method '{}' would be added", to_string(other->name));
  }
  return std::nullopt;
}

}  // namespace soca
