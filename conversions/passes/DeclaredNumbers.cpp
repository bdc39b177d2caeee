#include "conversions/passes/DeclaredNumbers.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>

#include "model/AnalyzerPositions.h"
#include "model/PropertiesBlock.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

template <class Declaration>
void add(const ca::AnalysisResult& analysis, const Declaration& declaration,
         std::unordered_map<std::string, std::vector<SourcePosition>>& places) {
  places[fl::i18n::to_string(declaration.name->text.view())].push_back(
      makeExtentOfNode(analysis, *declaration.name).start);
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

void DeclaredNumbers::correctId(Conversion& conversion) const {
  const Places* places = placesOf(conversion);
  if (places == nullptr) return;
  const auto place = std::ranges::find(*places, conversion.place.start);
  const std::size_t number = static_cast<std::size_t>(place - places->begin()) + 1;
  std::string& id = conversion.id;
  if (conversion.kind == ConversionKindType::emptyBlock) {
    id.erase(id.rfind(':') + 1);
    id += std::to_string(number);
  } else {
    id.erase(std::min(id.rfind('~'), id.size()));
    if (places->size() > 1) id += fmt::format("~{}", number);
  }
}

const DeclaredNumbers::Places* DeclaredNumbers::placesOf(const Conversion& conversion) const {
  if (conversion.kind == ConversionKindType::emptyBlock) return &emptyBlocks_;
  const bool isMethod = conversionKind(conversion.kind).family == RuleFamilyType::impl;
  const auto& places = isMethod ? methods_ : properties_;
  const auto found = places.find(conversion.member);
  return found == places.end() ? nullptr : &found->second;
}

}  // namespace soca
