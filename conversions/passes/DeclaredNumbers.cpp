#include "conversions/passes/DeclaredNumbers.h"

#include <fmt/core.h>

#include <algorithm>

#include "model/AnalyzerPositions.h"
#include "model/PropertiesBlock.h"
#include "platform/text/Conversions.h"
#include "rules/MethodRules.h"

namespace soca {
namespace {

// Empty for a name that no method gets.
std::string oldNameOfMethod(const std::string& name) {
  const fl::ustring newName = fl::i18n::to_ustring(name);
  return fl::i18n::to_string(oldNameOf(newName));
}

// Whether `left` is nearer to the position than `right`, where what is before it is farther.
bool isNearer(const SourcePosition& left, const SourcePosition& right,
              const SourcePosition& position) {
  if ((left < position) != (right < position)) return right < position;
  return left < position ? left > right : left < right;
}

}  // namespace

DeclaredNumbers::DeclaredNumbers(const ca::AnalysisResult& analysis) {
  for (const auto* block : analysis.getClassdef()->getPropertiesBlocks()) {
    if (block->members.empty()) emptyBlocks_.push_back(makeExtentOfNode(analysis, *block).start);
    for (const ca::astapi::Node* property : block->members) {
      add(analysis, static_cast<const ca::astapi::PropertyNode&>(*property), properties_);
    }
  }
  for (const auto* method : analysis.getClassdef()->getMethods()) add(analysis, *method, methods_);
}

template <class Node>
void DeclaredNumbers::add(const ca::AnalysisResult& analysis, const Node& declaration,
                          Declarations& declarations) {
  auto& places = declarations[fl::i18n::to_string(declaration.name->text.view())];
  haveDuplicates_ = haveDuplicates_ || !places.empty();
  places.push_back(makeExtentOfNode(analysis, *declaration.name));
}

void DeclaredNumbers::correct(Conversion& conversion) const {
  if (conversion.kind == ConversionKindType::emptyBlock) return correctBlock(conversion);
  if (conversion.member.empty()) return;
  const bool isMethod = conversionKind(conversion.kind).family == RuleFamilyType::impl;
  const Declarations& declarations = isMethod ? methods_ : properties_;
  const SourcePosition start = conversion.place.start;
  Found found;
  findNext(declarations, conversion.member, start, found);
  // An earlier pass may have renamed the method.
  if (isMethod) findNext(declarations, oldNameOfMethod(conversion.member), start, found);
  if (found.number == 0) return;
  conversion.place = found.place;
  conversion.member = found.name;
  conversion.id.erase(conversion.id.rfind(':') + 1);
  conversion.id += found.name;
  if (declarations.at(found.name).size() > 1) conversion.id += fmt::format("~{}", found.number);
}

void DeclaredNumbers::correctBlock(Conversion& conversion) const {
  const auto block = std::ranges::lower_bound(emptyBlocks_, conversion.place.start);
  if (block == emptyBlocks_.end() || *block != conversion.place.start) return;
  conversion.id.erase(conversion.id.rfind(':') + 1);
  conversion.id += fmt::format("{}", block - emptyBlocks_.begin() + 1);
}

// Replaces what was found if the declaration of this name is nearer: one at or after the position,
// or else the last one.
void DeclaredNumbers::findNext(const Declarations& declarations, const std::string& name,
                               const SourcePosition& position, Found& found) {
  const auto entry = declarations.find(name);
  if (entry == declarations.end()) return;
  const std::vector<Extent>& places = entry->second;
  const auto next = std::ranges::lower_bound(places, position, {}, &Extent::start);
  const auto place = next == places.end() ? places.end() - 1 : next;
  if (found.number != 0 && isNearer(found.place.start, place->start, position)) return;
  found = {name, static_cast<std::size_t>(place - places.begin()) + 1, *place};
}

}  // namespace soca
