#include "conversions/risk/MethodRisks.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <ranges>
#include <string>
#include <unordered_set>
#include <utility>

#include "conversions/parts/LinePlace.h"
#include "conversions/risk/Reasons.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/text/Conversions.h"
#include "rules/FindingPlaces.h"
#include "rules/MethodRules.h"

namespace soca {
namespace {

using ca::astapi::FunctionDeclaration;
using ca::astapi::FunctionDefinition;
using ca::astapi::Identifier;
using ca::astapi::Node;
using fl::i18n::to_string;
using lf::astapi::NodeKind;

std::string nameOf(const FunctionDeclaration& method) {
  return to_string(method.name->text.view());
}

void addReferences(const PlannedClass& planned, const RuleFinding& finding, ConversionRisk& risk) {
  const auto references = PlaceSearch(planned.analysis.get()).placesOf(finding);
  ConversionReason reason{"soca:StillReferenced", {}, {}};
  reason.detail = fmt::format("the source code refers to '{}' in {} place{}",
                              to_string(finding.memberName->text.view()), references.size(),
                              references.size() == 1 ? "" : "s");
  for (const FindingPlace& place : references | std::views::take(mostPlaces)) {
    reason.places.push_back({placeOf(place.extent), "A reference to the method."});
  }
  addReason(RiskType::unsafe, std::move(reason), risk);
}

// The definition of the method in a methods block; null if there is none.
const FunctionDeclaration* findMethod(const PlannedClass& planned, fl::ustring_view name) {
  for (const FunctionDeclaration* method : planned.analysis->getClassdef()->getMethods()) {
    if (method->kind == NodeKind::FunctionDefinition && method->name->text.view() == name) {
      return method;
    }
  }
  return nullptr;
}

void findOldMethod(const PlannedClass& planned, const RuleConversion& conversion,
                   ConversionRisk& risk) {
  const fl::ustring_view oldName = oldNameOf(conversion.method->name->text.view());
  if (oldName.empty()) return;
  const FunctionDeclaration* old = findMethod(planned, oldName);
  if (old == nullptr) return;
  addReason(RiskType::unsafe,
            {"soca:OldMethodStays",
             fmt::format("the class has '{}' too, which would take the place of '{}'", nameOf(*old),
                         nameOf(*conversion.method)),
             {{placeOfName(*planned.analysis, *old->name), "The method with the old name."}}},
            risk);
}

// --- negated calls ---

// The name at the beginning of a target of an assignment; null if there is none.
const Identifier* rootOf(const Node* target) {
  while (target != nullptr) {
    switch (target->kind) {
      case NodeKind::Identifier:
        return static_cast<const Identifier*>(target);
      case NodeKind::CallOrIndex:
      case NodeKind::CellIndex:
        target = static_cast<const ca::astapi::ApplyNode*>(target)->base;
        break;
      case NodeKind::FieldReference:
      case NodeKind::DynamicField:
        target = static_cast<const ca::astapi::PairNode*>(target)->left;
        break;
      default:
        return nullptr;
    }
  }
  return nullptr;
}

// Collects the variables of a method, and the values that are assigned to its output.
class AssignmentVisitor : public ca::astapi::Visitor<AssignmentVisitor, lf::astapi::Const> {
 public:
  explicit AssignmentVisitor(const FunctionDefinition* method)
      : output_(rootOf(method->outputs.front())->text.view()) {
    variables_.insert(output_);
    for (const Node* input : method->inputs) {
      addVariable(static_cast<const ca::astapi::InputArgument*>(input)->identifier);
    }
  }

  bool enter(const Node& node) {
    if (node.kind == NodeKind::SimpleAssignment) {
      const auto& assignment = static_cast<const ca::astapi::SimpleAssignment&>(node);
      addTarget(assignment.target, *assignment.value);
    } else if (node.kind == NodeKind::MultipleAssignment) {
      const auto& assignment = static_cast<const ca::astapi::MultipleAssignment&>(node);
      for (const Node* target : assignment.targets) addTarget(target, *assignment.value);
    } else if (node.kind == NodeKind::ForStatement) {
      addVariable(static_cast<const ca::astapi::ForStatement&>(node).variable);
    } else if (node.kind == NodeKind::GlobalStatement ||
               node.kind == NodeKind::PersistentStatement) {
      for (const Node* name : static_cast<const ca::astapi::ListNode&>(node).elements) {
        addVariable(name);
      }
    }
    return true;
  }

  // The calls among the values, once the whole method was visited.
  std::vector<const Node*> calls() const {
    std::vector<const Node*> calls;
    for (const Node* value : values_) {
      if (isCall(*value)) calls.push_back(value);
    }
    return calls;
  }

 private:
  void addTarget(const Node* target, const Node& value) {
    const Identifier* root = rootOf(target);
    if (root == nullptr) return;
    variables_.insert(root->text.view());
    if (root->text.view() == output_) values_.push_back(&value);
  }

  void addVariable(const Node* node) {
    if (const Identifier* root = rootOf(node)) variables_.insert(root->text.view());
  }

  // An element of a variable looks like a call; one of a property or of a value in a package may be
  // either. A name that is no variable is a call without arguments.
  bool isCall(const Node& value) const {
    switch (value.kind) {
      case NodeKind::Parenthesized:
        return isCall(*static_cast<const ca::astapi::WrapperNode&>(value).operand);
      case NodeKind::SuperclassCall:
        return true;
      case NodeKind::CallOrIndex: {
        const Node& callee = *static_cast<const ca::astapi::ApplyNode&>(value).base;
        return callee.kind != NodeKind::Identifier || isFunction(callee);
      }
      case NodeKind::Identifier:
        return isFunction(value);
      default:
        return false;
    }
  }

  bool isFunction(const Node& name) const {
    const fl::ustring_view text = static_cast<const Identifier&>(name).text.view();
    return text != u"true" && text != u"false" && !variables_.contains(text);
  }

  fl::ustring_view output_;
  std::unordered_set<fl::ustring_view> variables_;
  std::vector<const Node*> values_;
};

void findCalls(const PlannedClass& planned, const FunctionDefinition& method,
               ConversionRisk& risk) {
  AssignmentVisitor visitor(&method);
  visitor(&method);
  const auto calls = visitor.calls();
  if (calls.empty()) return;
  const auto textOf = [&](const Node* call) {
    return shortened(planned.analysis->nodeTextView(*call));
  };
  ConversionReason reason{"soca:CallNegated", {}, {}};
  reason.detail =
      calls.size() == 1
          ? fmt::format("the result that is negated is that of the call {}", textOf(calls.front()))
          : fmt::format(
                "the results that are negated are those of {} calls, the first of which "
                "is {}",
                calls.size(), textOf(calls.front()));
  for (const Node* call : calls | std::views::take(mostPlaces)) {
    reason.places.push_back({placeOfName(*planned.analysis, *call), "The call."});
  }
  addReason(RiskType::review, std::move(reason), risk);
}

}  // namespace

void judgeMethods(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  for (const RuleFinding& finding : planned.findings) {
    if (finding.conversion == noConversion || finding.findPlaces == nullptr) continue;
    addReferences(planned, finding, risks[finding.conversion]);
  }
  for (std::size_t i = 0; i < risks.size(); ++i) {
    const RuleConversion& conversion = planned.conversions[i];
    if (conversion.kind == ConversionKindType::deleteRedundant) {
      findOldMethod(planned, conversion, risks[i]);
    }
  }
}

void findNegatedCalls(const PlannedClass& planned, std::vector<ConversionRisk>& risks) {
  for (std::size_t i = 0; i < risks.size(); ++i) {
    const RuleConversion& conversion = planned.conversions[i];
    if (conversion.kind != ConversionKindType::renameNegate) continue;
    findCalls(planned, static_cast<const FunctionDefinition&>(*conversion.method), risks[i]);
  }
}

}  // namespace soca
