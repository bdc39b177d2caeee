#include "fuzz/KnownCauses.h"

#include <algorithm>
#include <array>
#include <string>

#include "metadata/VELUMMetaDataInterface.h"
#include "model/ClassDefinition.h"
#include "model/SourceFile.h"
#include "platform/analyzer/tree/Ast.h"

namespace soca::fuzz {
namespace {

using ca::astapi::PropertiesBlockNode;
using ca::astapi::PropertyNode;

// The model of the class before the update.
struct ClassModel {
  explicit ClassModel(const PlannedClass& plannedClass)
      : planned(plannedClass),
        metaClass(VELUMMetaDataInterface().getMetaClass(planned.result.className)),
        definition(planned.analysis->getClassdef(), {planned.analysis.get(), metaClass.get()}) {}

  const PlannedClass& planned;
  std::unique_ptr<MetaClass> metaClass;
  ClassDefinition definition;
};

// Whether an edit of the attribute rules begins on a line of the extent.
bool isEdited(const PlannedClass& planned, const Extent& extent) {
  return std::ranges::any_of(planned.actions, [&](const PlannedAction& action) {
    return action.family == RuleFamilyType::attributes &&
           std::ranges::any_of(action.edits, [&](const PlannedEdit& edit) {
             return edit.extent.startsWithinLinesOf(extent);
           });
  });
}

template <class Predicate>
bool anyEditedProperty(const ClassModel& model, const Predicate& predicate) {
  for (const PropertiesBlock& block : model.definition.getPropertiesBlocks()) {
    for (const Property& property : block.getProperties()) {
      if (isEdited(model.planned, property.getFullExtent()) && predicate(property)) return true;
    }
  }
  return false;
}

bool isConvertedSet(const ConstrainedSetInfo& set) { return set.kind == 1 || set.kind > 6; }

bool hasValueWithQuote(const ClassModel& model) {
  return anyEditedProperty(model, [](const Property& property) {
    const ConstrainedSetInfo set = property.getConstrainedSetInfo();
    const char16_t quote = set.valueType == 2 ? u'"' : u'\'';
    return isConvertedSet(set) && std::ranges::any_of(set.values, [&](const fl::ustring& value) {
             return value.find(quote) != fl::ustring::npos;
           });
  });
}

bool hasSetWithoutMembers(const ClassModel& model) {
  return anyEditedProperty(model, [](const Property& property) {
    const ConstrainedSetInfo set = property.getConstrainedSetInfo();
    return isConvertedSet(set) && set.values.empty();
  });
}

// Whether a converted set's property has the part, but no default value.
bool hasValidationWithoutDefault(const ClassModel& model, bool (Property::*hasPart)() const) {
  return anyEditedProperty(model, [&](const Property& property) {
    return isConvertedSet(property.getConstrainedSetInfo()) && !property.hasDefaultValue() &&
           (property.*hasPart)();
  });
}

bool hasClassWithoutDefault(const ClassModel& model) {
  return hasValidationWithoutDefault(model, &Property::hasClass) ||
         hasValidationWithoutDefault(model, &Property::hasSize);
}

bool hasValidatorsWithoutDefault(const ClassModel& model) {
  return hasValidationWithoutDefault(model, &Property::hasValidators);
}

// Whether an edit replaces text on three lines or more.
bool replacesThreeLines(const ClassModel& model) {
  return std::ranges::any_of(model.planned.actions, [](const PlannedAction& action) {
    return action.family == RuleFamilyType::attributes &&
           std::ranges::any_of(action.edits, [](const PlannedEdit& edit) {
             return !edit.text.empty() && edit.extent.end.line > edit.extent.start.line + 1;
           });
  });
}

// Whether an edit replaces text on several lines that is directly followed by a continuation.
bool replacesInFrontOfContinuation(const ClassModel& model) {
  const SourceFile file(model.planned.analysis->sourceTextView());
  return std::ranges::any_of(model.planned.actions, [&](const PlannedAction& action) {
    return std::ranges::any_of(action.edits, [&](const PlannedEdit& edit) {
      if (edit.text.empty() || edit.extent.end.line == edit.extent.start.line) return false;
      const fl::ustring_view line = file.getLines()[edit.extent.end.line].text;
      const std::size_t next = line.find_first_not_of(u" \t\v\f\r", edit.extent.end.column);
      return next != fl::ustring_view::npos && line.substr(next).starts_with(u"...");
    });
  });
}

// Whether an edit of a method is followed by a word on its line: no separator is needed before some
// keywords, but between two statements.
bool editsInFrontOfKeyword(const ClassModel& model) {
  const SourceFile file(model.planned.analysis->sourceTextView());
  return std::ranges::any_of(model.planned.actions, [&](const PlannedAction& action) {
    return action.family == RuleFamilyType::impl &&
           std::ranges::any_of(action.edits, [&](const PlannedEdit& edit) {
             const fl::ustring_view line = file.getLines()[edit.extent.end.line].text;
             const std::size_t next = line.find_first_not_of(u" \t", edit.extent.end.column);
             return !edit.text.empty() && next != fl::ustring_view::npos && line[next] >= u'a' &&
                    line[next] <= u'z';
           });
  });
}

// --- causes that only the tree shows ---

template <class Predicate>
bool anyBlock(const ClassModel& model, const Predicate& predicate) {
  return std::ranges::any_of(model.planned.analysis->getClassdef()->getPropertiesBlocks(),
                             predicate);
}

// Whether the keyword is followed by parentheses, after blanks and continuations.
bool hasEmptyParentheses(const ClassModel& model, const PropertiesBlockNode& block) {
  if (!block.attributes.empty()) return false;
  fl::ustring_view rest = model.planned.analysis->nodeTextView(block);
  rest.remove_prefix(fl::ustring_view(u"properties").size());
  while (true) {
    const std::size_t next = rest.find_first_not_of(u" \t\v\f\r");
    if (next == fl::ustring_view::npos) return false;
    rest.remove_prefix(next);
    if (!rest.starts_with(u"...")) return rest.starts_with(u'(');
    rest.remove_prefix(std::min(rest.find(u'\n') + 1, rest.size()));
  }
}

bool joinsBlockWithParentheses(const ClassModel& model) {
  return anyBlock(
      model, [&](const PropertiesBlockNode* block) { return hasEmptyParentheses(model, *block); });
}

bool hasEmptyBraces(const ClassModel& model) {
  return anyBlock(model, [&](const PropertiesBlockNode* block) {
    return std::ranges::any_of(block->members, [](const ca::astapi::Node* member) {
      const auto* validation = static_cast<const PropertyNode&>(*member).validation;
      return validation != nullptr && validation->validatorBraces && validation->validators.empty();
    });
  });
}

struct Cause {
  std::string_view title;
  bool (*applies)(const ClassModel&);
};

constexpr std::array<Cause, 9> causes = {{
    {"a value with a quote", hasValueWithQuote},
    {"a set without members", hasSetWithoutMembers},
    {"the parentheses of a joined block", joinsBlockWithParentheses},
    {"braces without validators", hasEmptyBraces},
    {"a class without a default value", hasClassWithoutDefault},
    {"validators without a default value", hasValidatorsWithoutDefault},
    {"a size over three lines", replacesThreeLines},
    {"a size before a continuation", replacesInFrontOfContinuation},
    {"a statement before a keyword", editsInFrontOfKeyword},
}};

}  // namespace

std::optional<std::string_view> findKnownCause(const PlannedClass& planned) {
  const ClassModel model(planned);
  const auto cause =
      std::ranges::find_if(causes, [&](const Cause& each) { return each.applies(model); });
  return cause != causes.end() ? std::optional(cause->title) : std::nullopt;
}

std::vector<std::string_view> knownCauses() {
  std::vector<std::string_view> titles;
  for (const Cause& cause : causes) titles.push_back(cause.title);
  return titles;
}

}  // namespace soca::fuzz
