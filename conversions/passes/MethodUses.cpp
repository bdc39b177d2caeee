#include "conversions/passes/MethodUses.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "conversions/ClassMembers.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/text/TextSearch.h"
#include "rules/MethodRules.h"

namespace soca {
namespace {

constexpr std::size_t methodCount =
    renameRules.size() + obsoleteMethods.size() + redundantMethods.size();
static_assert(methodCount <= mostMethods);

// First those that a rule takes away whatever the superclasses have.
constexpr std::array<fl::ustring_view, methodCount> methodNames = [] {
  std::array<fl::ustring_view, methodCount> names;
  std::size_t next = 0;
  for (const RenameRule& rule : renameRules) names[next++] = rule.oldName;
  for (const char16_t* name : obsoleteMethods) names[next++] = name;
  for (const RedundantMethod& rule : redundantMethods) names[next++] = rule.name;
  return names;
}();
constexpr MethodSet unconditional =
    (MethodSet{1} << (renameRules.size() + obsoleteMethods.size())) - 1;

// All names end with this, and most classes have only few of those that do.
constexpr fl::ustring_view commonEnd = u"Impl";
constexpr bool haveCommonEnd() {
  return std::ranges::all_of(methodNames,
                             [](fl::ustring_view name) { return name.ends_with(commonEnd); });
}
static_assert(haveCommonEnd());

// The names that stand anywhere in the text, as words or in longer ones.
MethodSet findNames(fl::ustring_view text) {
  static const fl::TextFinder finder(commonEnd);
  MethodSet found = 0;
  for (std::size_t place = finder.find(text); place != fl::ustring_view::npos;
       place = finder.find(text, place + 1)) {
    const fl::ustring_view head = text.substr(0, place + commonEnd.size());
    for (std::size_t i = 0; i < methodCount; ++i) {
      if (head.ends_with(methodNames[i])) found |= MethodSet{1} << i;
    }
  }
  return found;
}

}  // namespace

MethodSet methodSetOf(fl::ustring_view name) {
  const auto place = std::ranges::find(methodNames, name);
  if (place == methodNames.end()) return 0;
  return static_cast<MethodSet>(1 << (place - methodNames.begin()));
}

std::vector<fl::ustring_view> namesOf(MethodSet methods) {
  std::vector<fl::ustring_view> names;
  for (std::size_t i = 0; i < methodCount; ++i) {
    if ((methods >> i & 1) != 0) names.push_back(methodNames[i]);
  }
  return names;
}

MethodSet MethodNames::used() const {
  return static_cast<MethodSet>(referred | (declared & unconditional));
}

MethodSet MethodNames::concerned() const {
  MethodSet concerned = declared & ~unconditional;
  for (const RenameRule& rule : renameRules) {
    const MethodSet both = methodSetOf(rule.oldName) | methodSetOf(rule.newName);
    if ((declared & both) != 0) concerned |= both;
  }
  return concerned;
}

MethodNames findMethodNames(const ca::AnalysisResult& analysis) {
  MethodNames names;
  if (findNames(analysis.sourceTextView()) == 0) return names;
  std::unordered_set<const ca::astapi::Node*> declared;
  for (const DeclaredMethod& method : declaredMethods(analysis)) {
    const MethodSet known = methodSetOf(method.name);
    if (known == 0) continue;
    declared.insert(method.node->name);
    names.declared |= known;
    if (method.node->kind == lf::astapi::NodeKind::FunctionDefinition) names.defined |= known;
  }
  ca::astapi::NodeVisitor<ca::astapi::Identifier> visitor(
      [&](const ca::astapi::Identifier& identifier) {
        if (declared.contains(&identifier)) return;
        names.referred |= methodSetOf(identifier.text.view());
      });
  visitor(analysis.getRootNode());
  return names;
}

MethodSet methodsChangedBy(ConversionKindType kind, fl::ustring_view method) {
  if (kind == ConversionKindType::deleteRedundant) return methodSetOf(method);
  for (const RenameRule& rule : renameRules) {
    if (method == rule.oldName) return methodSetOf(rule.oldName) | methodSetOf(rule.newName);
  }
  return 0;
}

}  // namespace soca
