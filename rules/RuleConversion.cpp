#include "rules/RuleConversion.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "model/AnalyzerPositions.h"

namespace soca {
namespace {

using ca::AnalysisResult;
using ca::astapi::FunctionDeclaration;
using ca::astapi::Node;
using ca::astapi::PropertiesBlockNode;
using ca::astapi::PropertyNode;

template <class Declaration>
Member memberOf(const AnalysisResult& analysis, const Declaration& declaration) {
  return {declaration.name->text.getText(), makeExtentOfNode(analysis, declaration),
          makeExtentOfNode(analysis, *declaration.name)};
}

fl::ustring numberText(std::size_t number) {
  const std::string digits = std::to_string(number);
  return fl::ustring(digits.begin(), digits.end());
}

// Numbers the declarations of each name.
class DeclarationNumbers {
 public:
  template <class Declaration>
  void add(const Declaration* declaration) {
    const std::size_t number = ++counts_[declaration->name->text.view()];
    numbers_.emplace(declaration, number);
  }

  // The name, with the number of the declaration if there are several.
  template <class Declaration>
  fl::ustring textOf(const Declaration* declaration) const {
    fl::ustring text = declaration->name->text.getText();
    if (counts_.at(text) > 1) text += u'~' + numberText(numbers_.at(declaration));
    return text;
  }

 private:
  std::unordered_map<fl::ustring_view, std::size_t> counts_;
  std::unordered_map<const Node*, std::size_t> numbers_;
};

class ConversionNamer {
 public:
  explicit ConversionNamer(const AnalysisResult& analysis) {
    for (const PropertiesBlockNode* block : analysis.getClassdef()->getPropertiesBlocks()) {
      if (block->members.empty()) emptyBlocks_.emplace(block, emptyBlocks_.size() + 1);
      for (const Node* property : block->members) {
        properties_.add(static_cast<const PropertyNode*>(property));
      }
    }
    for (const FunctionDeclaration* method : analysis.getClassdef()->getMethods()) {
      methods_.add(method);
    }
  }

  fl::ustring nameOf(const RuleConversion& conversion) const {
    const std::string_view kind = conversionKind(conversion.kind).name;
    const fl::ustring subject = subjectOf(conversion);
    const fl::ustring name(kind.begin(), kind.end());
    return subject.empty() ? name : name + u':' + subject;
  }

 private:
  fl::ustring subjectOf(const RuleConversion& conversion) const {
    if (conversion.method != nullptr) return methods_.textOf(conversion.method);
    if (conversion.property != nullptr) return properties_.textOf(conversion.property);
    if (conversion.block != nullptr) return numberText(emptyBlocks_.at(conversion.block));
    return {};
  }

  DeclarationNumbers properties_;
  DeclarationNumbers methods_;
  std::unordered_map<const Node*, std::size_t> emptyBlocks_;
};

}  // namespace

std::vector<Member> findMembers(const AnalysisResult& analysis, const RuleConversion& conversion) {
  std::vector<Member> members;
  if (conversion.method != nullptr) members.push_back(memberOf(analysis, *conversion.method));
  if (conversion.block != nullptr) {
    for (const Node* property : conversion.block->members) {
      members.push_back(memberOf(analysis, static_cast<const PropertyNode&>(*property)));
    }
  } else if (conversion.property != nullptr) {
    members.push_back(memberOf(analysis, *conversion.property));
  }
  if (conversion.companion != nullptr) members.push_back(memberOf(analysis, *conversion.companion));
  std::ranges::sort(members, {}, [](const Member& member) { return member.extent.start; });
  return members;
}

Extent findExtent(const AnalysisResult& analysis, const RuleConversion& conversion) {
  if (conversion.method != nullptr) return makeExtentOfNode(analysis, *conversion.method);
  if (conversion.block != nullptr) return makeExtentOfNode(analysis, *conversion.block);
  if (conversion.property != nullptr) return makeExtentOfNode(analysis, *conversion.property);
  const auto& superClasses = analysis.getClassdef()->superClasses;
  return {makeExtentOfNode(analysis, *superClasses.front()).start,
          makeExtentOfNode(analysis, *superClasses.back()).end};
}

std::vector<fl::ustring> makeConversionIds(const AnalysisResult& analysis,
                                           const std::vector<RuleConversion>& conversions) {
  const ConversionNamer namer(analysis);
  std::vector<fl::ustring> ids;
  ids.reserve(conversions.size());
  for (const RuleConversion& conversion : conversions) ids.push_back(namer.nameOf(conversion));
  return ids;
}

}  // namespace soca
