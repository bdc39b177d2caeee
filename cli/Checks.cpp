#include "cli/Checks.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cli/ClassMembers.h"
#include "cli/KeptText.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"

namespace soca::cli {
namespace {

using fl::i18n::to_string;

// The edits of one family that are no insertions, by where they begin.
std::map<SourcePosition, const PlannedEdit*> editsByStart(const PlannedClass& planned,
                                                          RuleFamilyType family) {
  std::map<SourcePosition, const PlannedEdit*> edits;
  for (const PlannedAction& action : planned.actions) {
    if (action.family != family) continue;
    for (const PlannedEdit& edit : action.edits) {
      if (edit.extent.start != edit.extent.end) edits.emplace(edit.extent.start, &edit);
    }
  }
  return edits;
}

// --- properties ---

class PropertyCheck {
 public:
  explicit PropertyCheck(const PlannedClass& planned)
      : planned_(planned),
        edits_(editsByStart(planned, RuleFamilyType::attributes)),
        description_(sotarn::describeClass(to_string(planned.result.className))) {}

  std::optional<std::string> run(const ca::AnalysisResult& updated) {
    const auto found = declaredProperties(updated);
    auto next = found.begin();
    for (const DeclaredProperty& property : declaredProperties(*planned_.analysis)) {
      if (isDeleted(property)) {
        deleted_.insert(property.name);
        continue;
      }
      if (next == found.end() || next->name != property.name) {
        return fmt::format("property '{}' would get lost", to_string(property.name));
      }
      if (!property.defaultText.empty() && next->defaultText != property.defaultText) {
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

 private:
  bool isDeleted(const DeclaredProperty& property) const {
    auto edit = edits_.upper_bound(property.extent.start);
    if (edit == edits_.begin()) return false;
    --edit;
    return edit->second->text.empty() && property.extent.end <= edit->second->extent.end;
  }

  // Only companions of sets may go, and their values have to survive the quotes that the new
  // declarations put round them.
  std::optional<std::string> checkDeleted() {
    std::unordered_set<fl::ustring_view> others = deleted_;
    if (!others.empty() && description_ != nullptr) {
      for (const auto& [name, property] : description_->properties) {
        if (!property.constrainedSet) continue;
        const sotarn::ConstrainedSetInfo& set = *property.constrainedSet;
        if (!deleted_.contains(set.setPropertyName)) continue;
        others.erase(set.setPropertyName);
        if (holdsItsQuote(set)) {
          return fmt::format("a value in the set of property '{}' has a quote in it", name);
        }
      }
    }
    if (others.empty()) return std::nullopt;
    return fmt::format("property '{}' would be deleted", to_string(*others.begin()));
  }

  static bool holdsItsQuote(const sotarn::ConstrainedSetInfo& set) {
    const char16_t quote = set.valueType == 2 ? u'"' : u'\'';
    return std::ranges::any_of(set.values, [quote](const fl::ustring& value) {
      return value.find(quote) != fl::ustring::npos;
    });
  }

  const PlannedClass& planned_;
  std::map<SourcePosition, const PlannedEdit*> edits_;
  std::shared_ptr<const sotarn::ClassDescription> description_;
  std::unordered_set<fl::ustring_view> deleted_;
};

// --- methods ---

// The names of the methods as the actions say that they will be.
std::vector<fl::ustring> expectedMethods(const PlannedClass& planned) {
  const auto edits = editsByStart(planned, RuleFamilyType::impl);
  const auto editOf = [&](const Extent& extent) {
    const auto edit = edits.find(extent.start);
    return edit != edits.end() && edit->second->extent == extent ? edit->second : nullptr;
  };
  std::vector<fl::ustring> names;
  for (const DeclaredMethod& method : declaredMethods(*planned.analysis)) {
    const PlannedEdit* deletion = editOf(method.extent);
    if (deletion != nullptr && deletion->text.empty()) continue;
    const PlannedEdit* renaming = editOf(method.nameExtent);
    names.push_back(renaming != nullptr ? renaming->text : fl::ustring(method.name));
  }
  return names;
}

std::optional<std::string> checkMethods(const PlannedClass& planned,
                                        const ca::AnalysisResult& updated) {
  const auto expected = expectedMethods(planned);
  const auto found = declaredMethods(updated);
  const auto [missing, other] =
      std::ranges::mismatch(expected, found, {}, {}, &DeclaredMethod::name);
  if (missing != expected.end()) {
    return fmt::format("method '{}' would get lost", to_string(*missing));
  }
  if (other != found.end()) {
    return fmt::format("a method '{}' would be added", to_string(other->name));
  }
  return std::nullopt;
}

std::optional<std::string> checkSyntax(const ca::AnalysisResult& updated) {
  if (!updated.hasSyntaxError()) return std::nullopt;
  if (updated.diagnostics().empty()) return "the new text would have a syntax error";
  const ca::Diagnostic& first = updated.diagnostics().front();
  return fmt::format("the new text would have a syntax error in line {}, column {}: {}",
                     first.line + 1, first.column + 1, first.message);
}

}  // namespace

std::optional<std::string> findReasonToRefuse(const PlannedClass& planned,
                                              const ca::AnalysisResult& updated) {
  if (auto reason = checkSyntax(updated)) return reason;
  if (auto reason = PropertyCheck(planned).run(updated)) return reason;
  if (auto reason = checkMethods(planned, updated)) return reason;
  return findLostText(planned.analysis->sourceTextView(), planned.result.text, planned.actions);
}

}  // namespace soca::cli
