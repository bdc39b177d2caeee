#include "conversions/passes/DeclaredNumbers.h"

#include <fmt/core.h>

#include "model/AnalyzerPositions.h"
#include "model/PropertiesBlock.h"
#include "platform/text/Conversions.h"

namespace soca {

DeclaredNumbers::DeclaredNumbers(const ca::AnalysisResult& analysis) {
  for (const auto* block : analysis.getClassdef()->getPropertiesBlocks()) {
    if (block->members.empty()) {
      emptyBlocks_.emplace(makeExtentOfNode(analysis, *block).start,
                           Declaration{{}, emptyBlocks_.size() + 1});
    }
    for (const ca::astapi::Node* property : block->members) {
      add(analysis, static_cast<const ca::astapi::PropertyNode&>(*property), properties_,
          propertyCounts_);
    }
  }
  for (const auto* method : analysis.getClassdef()->getMethods()) {
    add(analysis, *method, methods_, methodCounts_);
  }
}

template <class Node>
void DeclaredNumbers::add(const ca::AnalysisResult& analysis, const Node& declaration,
                          Declarations& declarations, Counts& counts) {
  std::string name = fl::i18n::to_string(declaration.name->text.view());
  const std::size_t number = ++counts[name];
  declarations.emplace(makeExtentOfNode(analysis, *declaration.name).start,
                       Declaration{std::move(name), number});
}

void DeclaredNumbers::correct(Conversion& conversion) const {
  const bool isBlock = conversion.kind == ConversionKindType::emptyBlock;
  const bool isMethod = conversionKind(conversion.kind).family == RuleFamilyType::impl;
  const Declarations& declarations = isBlock ? emptyBlocks_ : isMethod ? methods_ : properties_;
  const auto place = declarations.find(conversion.place.start);
  if (place == declarations.end()) return;
  const auto& [name, number] = place->second;
  conversion.id.erase(conversion.id.rfind(':') + 1);
  if (isBlock) {
    conversion.id += fmt::format("{}", number);
    return;
  }
  conversion.member = name;
  conversion.id += name;
  const Counts& counts = isMethod ? methodCounts_ : propertyCounts_;
  if (counts.at(name) > 1) conversion.id += fmt::format("~{}", number);
}

}  // namespace soca
