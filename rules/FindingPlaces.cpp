#include "rules/FindingPlaces.h"

#include <algorithm>
#include <utility>

#include "model/AnalyzerPositions.h"
#include "model/ClassContext.h"
#include "platform/analyzer/IdentifierSearch.h"

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

template <class NodesByName>
std::vector<const Node*> nodesOf(const NodesByName& nodes, fl::ustring_view name) {
  std::vector<const Node*> found;
  const auto [first, last] = nodes.equal_range(name);
  for (auto node = first; node != last; ++node) found.push_back(node->second);
  return found;
}

bool makesAbstract(const ca::astapi::Attribute& attribute) {
  return attribute.name->text.view() == u"Abstract" &&
         attribute.isAttributeWithGivenLogicalValue(true);
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

// --- what several findings need ---

std::vector<FindingPlace> PlaceSearch::placesOf(const RuleFinding& finding) {
  if (finding.findPlaces == nullptr) return {};
  return finding.findPlaces(*this, finding);
}

std::vector<const Node*> PlaceSearch::abstractAttributesOf(fl::ustring_view property) {
  if (!abstractAttributes_) {
    abstractAttributes_.emplace();
    for (const auto* block : analysis_.getClassdef()->getPropertiesBlocks()) {
      for (const ca::astapi::Attribute* attribute : block->attributes) {
        if (!makesAbstract(*attribute)) continue;
        for (const Node* member : block->members) {
          const auto& name = *static_cast<const PropertyNode*>(member)->name;
          abstractAttributes_->emplace(name.text.view(), attribute);
        }
      }
    }
  }
  return nodesOf(*abstractAttributes_, property);
}

std::vector<const Node*> PlaceSearch::methodNames(fl::ustring_view method) {
  if (!methods_) {
    methods_.emplace();
    for (const auto* each : analysis_.getClassdef()->getMethods()) {
      methods_->emplace(each->name->text.view(), each->name);
    }
  }
  return nodesOf(*methods_, method);
}

std::size_t PlaceSearch::findBehindDot(fl::ustring_view property) {
  if (!dots_) {
    std::vector<fl::ustring_view> names;
    for (const auto* block : analysis_.getClassdef()->getPropertiesBlocks()) {
      for (const Node* member : block->members) {
        names.push_back(static_cast<const PropertyNode*>(member)->name->text.view());
      }
    }
    dots_.emplace(analysis_.sourceTextView(), std::move(names));
  }
  return dots_->findBehind(property);
}

MethodAccessType accessOf(const AnalysisResult& analysis, const Node* method) {
  const MethodsBlockNode* node = blockOf(analysis, method);
  const ClassContext context{&analysis, nullptr};
  return node == nullptr ? MethodAccessType::publicAccess
                         : MethodsBlock(node, &context).getAccess();
}

// --- the places of each kind of finding ---

std::vector<FindingPlace> findAbstractAttributes(PlaceSearch& search, const RuleFinding& finding) {
  std::vector<FindingPlace> places;
  for (const Node* attribute : search.abstractAttributesOf(finding.memberName->text.view())) {
    places.push_back(makePlace(search.analysis(), FindingPlaceType::abstractAttribute, *attribute));
  }
  places = sorted(std::move(places));
  const auto same = std::ranges::unique(places);
  places.erase(same.begin(), same.end());
  return places;
}

std::vector<FindingPlace> findGetMethod(PlaceSearch& search, const RuleFinding& finding) {
  std::vector<FindingPlace> places = {placeOfCompanion(search.analysis(), finding)};
  for (const Node* name : search.methodNames(u"get." + companionOf(finding).name->text.getText())) {
    places.push_back(makePlace(search.analysis(), FindingPlaceType::getMethod, *name));
  }
  return sorted(std::move(places));
}

std::vector<FindingPlace> findCompanionDefault(PlaceSearch& search, const RuleFinding& finding) {
  std::vector<FindingPlace> places = {placeOfCompanion(search.analysis(), finding)};
  const Node* value = companionOf(finding).defaultValue;
  if (value != nullptr) {
    places.push_back(makePlace(search.analysis(), FindingPlaceType::companionDefault, *value));
  }
  return places;
}

std::vector<FindingPlace> findCompanionUse(PlaceSearch& search, const RuleFinding& finding) {
  const AnalysisResult& analysis = search.analysis();
  std::vector<FindingPlace> places = {placeOfCompanion(analysis, finding)};
  const fl::ustring_view name = companionOf(finding).name->text.view();
  const std::size_t behind = search.findBehindDot(name);
  if (behind != fl::ustring_view::npos) {
    const auto start = static_cast<std::uint32_t>(behind - name.size());
    places.push_back(
        {FindingPlaceType::companionUse, makeExtentOfToken(analysis, start, name.size())});
  }
  return sorted(std::move(places));
}

std::vector<FindingPlace> findOtherMethod(PlaceSearch& search, const RuleFinding& finding) {
  const AnalysisResult& analysis = search.analysis();
  const auto& other = static_cast<const ca::astapi::FunctionDeclaration&>(*finding.other);
  return {makePlace(analysis, FindingPlaceType::otherMethod, *other.name)};
}

std::vector<FindingPlace> findSignature(PlaceSearch& search, const RuleFinding& finding) {
  const AnalysisResult& analysis = search.analysis();
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

std::vector<FindingPlace> findReferences(PlaceSearch& search, const RuleFinding& finding) {
  const AnalysisResult& analysis = search.analysis();
  std::vector<FindingPlace> places;
  ca::astapi::visitIdentifiers(
      analysis.getRootNode(), analysis.sourceTextView(), finding.memberName->text.view(),
      [&](const Identifier& identifier) {
        if (&identifier == finding.memberName) return true;
        places.push_back(makePlace(analysis, FindingPlaceType::reference, identifier));
        return true;
      });
  return places;
}

}  // namespace soca
