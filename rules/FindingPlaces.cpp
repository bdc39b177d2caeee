#include "rules/FindingPlaces.h"

#include <algorithm>

#include "model/AnalyzerPositions.h"
#include "model/ClassContext.h"
#include "model/MethodsBlock.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

using ca::AnalysisResult;
using ca::astapi::FunctionDefinition;
using ca::astapi::Identifier;
using ca::astapi::MethodsBlockNode;
using ca::astapi::Node;
using ca::astapi::PropertyNode;

FindingPlace makePlace(const AnalysisResult& analysis, FindingPlaceType type, const Node& node) {
  return {type, makeExtentOfNode(analysis, node)};
}

// In the order of the file.
std::vector<FindingPlace> sorted(std::vector<FindingPlace> places) {
  std::ranges::stable_sort(places, {},
                           [](const FindingPlace& place) { return place.extent.start; });
  return places;
}

const PropertyNode& companionOf(const RuleFinding& finding) {
  return static_cast<const PropertyNode&>(*finding.other);
}

FindingPlace placeOfCompanion(const AnalysisResult& analysis, const RuleFinding& finding) {
  return makePlace(analysis, FindingPlaceType::companion, *companionOf(finding).name);
}

// The block of the method; null if there is none.
const MethodsBlockNode* blockOf(const AnalysisResult& analysis, const Node* method) {
  for (const MethodsBlockNode* block : analysis.getClassdef()->getMethodsBlocks()) {
    if (std::ranges::find(block->members, method) != block->members.end()) return block;
  }
  return nullptr;
}

bool hasExpectedSignature(const FunctionDefinition& method, const ExpectedSignature& expected) {
  const bool hasInputs = expected.takesMoreInputs ? method.inputs.size() >= expected.inputs
                                                  : method.inputs.size() == expected.inputs;
  return hasInputs && method.outputs.size() == expected.outputs;
}

// From `function` to the last input, or to the name.
Extent signatureOf(const AnalysisResult& analysis, const FunctionDefinition& method) {
  const Node* last = method.name;
  if (!method.inputs.empty()) last = method.inputs.back();
  return {makeExtentOfNode(analysis, method).start, makeExtentOfNode(analysis, *last).end};
}

}  // namespace

std::vector<FindingPlace> findAbstractAttributes(const AnalysisResult& analysis,
                                                 const RuleFinding& finding) {
  std::vector<FindingPlace> places;
  for (const auto* block : analysis.getClassdef()->getPropertiesBlocks()) {
    const bool declaresIt = std::ranges::any_of(block->members, [&](const Node* member) {
      return static_cast<const PropertyNode*>(member)->name->id == finding.memberName->id;
    });
    if (!declaresIt) continue;
    for (const ca::astapi::Attribute* attribute : block->attributes) {
      const bool isAbstract = attribute->name->text.view() == u"Abstract" &&
                              attribute->isAttributeWithGivenLogicalValue(true);
      if (!isAbstract) continue;
      places.push_back(makePlace(analysis, FindingPlaceType::abstractAttribute, *attribute));
    }
  }
  return places;
}

std::vector<FindingPlace> findGetMethod(const AnalysisResult& analysis,
                                        const RuleFinding& finding) {
  std::vector<FindingPlace> places = {placeOfCompanion(analysis, finding)};
  const fl::ustring name = u"get." + companionOf(finding).name->text.getText();
  for (const auto* method : analysis.getClassdef()->getMethods()) {
    if (method->name->text.view() != name) continue;
    places.push_back(makePlace(analysis, FindingPlaceType::getMethod, *method->name));
  }
  return sorted(std::move(places));
}

std::vector<FindingPlace> findCompanionDefault(const AnalysisResult& analysis,
                                               const RuleFinding& finding) {
  std::vector<FindingPlace> places = {placeOfCompanion(analysis, finding)};
  const Node* value = companionOf(finding).defaultValue;
  if (value != nullptr) {
    places.push_back(makePlace(analysis, FindingPlaceType::companionDefault, *value));
  }
  return places;
}

std::vector<FindingPlace> findCompanionUse(const AnalysisResult& analysis,
                                           const RuleFinding& finding) {
  std::vector<FindingPlace> places = {placeOfCompanion(analysis, finding)};
  const fl::ustring_view name = companionOf(finding).name->text.view();
  const std::size_t behind = fl::findBehindDot(analysis.sourceTextView(), name);
  if (behind != fl::ustring_view::npos) {
    const auto start = static_cast<std::uint32_t>(behind - name.size());
    places.push_back(
        {FindingPlaceType::companionUse, makeExtentOfToken(analysis, start, name.size())});
  }
  return sorted(std::move(places));
}

std::vector<FindingPlace> findOtherMethod(const AnalysisResult& analysis,
                                          const RuleFinding& finding) {
  const auto& other = static_cast<const ca::astapi::FunctionDeclaration&>(*finding.other);
  return {makePlace(analysis, FindingPlaceType::otherMethod, *other.name)};
}

std::vector<FindingPlace> findSignature(const AnalysisResult& analysis,
                                        const RuleFinding& finding) {
  const auto& method = static_cast<const FunctionDefinition&>(*finding.member);
  std::vector<FindingPlace> places;
  if (const MethodsBlockNode* node = blockOf(analysis, finding.member)) {
    const ClassContext context{&analysis, nullptr};
    const MethodsBlock block(node, &context);
    if (block.getAccess() != MethodAccessType::protectedAccess) {
      places.push_back({FindingPlaceType::access, block.getOpeningExtent()});
    }
  }
  if (!hasExpectedSignature(method, *finding.expected)) {
    places.push_back({FindingPlaceType::signature, signatureOf(analysis, method)});
  }
  return places;
}

std::vector<FindingPlace> findReferences(const AnalysisResult& analysis,
                                         const RuleFinding& finding) {
  std::vector<FindingPlace> places;
  ca::astapi::NodeVisitor<Identifier> visitor([&](const Identifier& identifier) {
    if (&identifier == finding.memberName || !(identifier.id == finding.memberName->id)) return;
    places.push_back(makePlace(analysis, FindingPlaceType::reference, identifier));
  });
  visitor(analysis.getRootNode());
  return sorted(std::move(places));
}

}  // namespace soca
