#include "conversions/passes/MethodUses.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "conversions/ClassMembers.h"
#include "platform/analyzer/IdentifierSearch.h"
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

// Calls `visit` with each place in the text, as a word or in a longer one, and the name.
template <class Visit>
void visitNames(fl::ustring_view text, const Visit& visit) {
  static const fl::TextFinder finder(commonEnd);
  for (std::size_t place = finder.find(text); place != fl::ustring_view::npos;
       place = finder.find(text, place + 1)) {
    const fl::ustring_view head = text.substr(0, place + commonEnd.size());
    for (const fl::ustring_view name : methodNames) {
      if (head.ends_with(name)) visit(head.size() - name.size(), name);
    }
  }
}

using Declarations = std::unordered_set<const ca::astapi::Node*>;

// The names to which the text refers, without declarations, of those in `candidates`.
MethodSet findReferred(const ca::AnalysisResult& analysis, const Declarations& declarations,
                       MethodSet candidates) {
  MethodSet referred = 0;
  const auto add = [&](const ca::astapi::Identifier& identifier) {
    if (!declarations.contains(&identifier)) referred |= methodSetOf(identifier.text.view());
  };
  if (analysis.hasSyntaxError()) {
    ca::astapi::NodeVisitor<ca::astapi::Identifier> visitor(add);
    visitor(analysis.getRootNode());
    return referred;
  }
  ca::astapi::IdentifierSearch search(analysis.getRootNode());
  visitNames(analysis.sourceTextView(), [&](std::size_t place, fl::ustring_view name) {
    if ((candidates & ~referred & methodSetOf(name)) == 0) return;
    if (const auto* found = search.findAt(static_cast<std::uint32_t>(place))) add(*found);
  });
  return referred;
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

bool mayNameMethods(fl::ustring_view text) {
  bool isNamed = false;
  visitNames(text, [&](std::size_t, fl::ustring_view) { isNamed = true; });
  return isNamed;
}

MethodNames findMethodNames(const ca::AnalysisResult& analysis) {
  return findMethodNames(analysis, static_cast<MethodSet>(~0U), true);
}

MethodNames findMethodNames(const ca::AnalysisResult& analysis, MethodSet referred, bool mayLose) {
  MethodNames names;
  Declarations declarations;
  for (const DeclaredMethod& method : declaredMethods(analysis)) {
    if (!method.name.ends_with(commonEnd)) continue;
    const MethodSet known = methodSetOf(method.name);
    if (known == 0) continue;
    declarations.insert(method.node->name);
    names.declared |= known;
    if (method.node->kind == lf::astapi::NodeKind::FunctionDefinition) names.defined |= known;
  }
  const bool isKnown = referred == 0 || !mayLose;
  names.referred = isKnown ? referred : findReferred(analysis, declarations, referred);
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
