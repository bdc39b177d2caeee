#include "rules/ImplDeprecationFactory.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <ranges>
#include <utility>
#include <vector>

#include "diagnostics/Findings.h"
#include "diagnostics/Messages.h"
#include "model/AnalyzedClass.h"
#include "model/ClassDefinition.h"
#include "model/Method.h"
#include "model/MethodsBlock.h"
#include "platform/text/UString.h"
#include "rules/FindingPlaces.h"
#include "rules/MethodActions.h"
#include "rules/MethodRules.h"
#include "rules/RuleFamilies.h"

namespace soca {
namespace {

using VELUM::system::Analyzer::DeprecatedImplReferenced;
using VELUM::system::Analyzer::ImplNameConflictAfterConversion;
using VELUM::system::Analyzer::ImplSignatureMismatch;
using VELUM::system::Analyzer::LegacyImplReferenced;

// Whether the method is protected and has the signature.
bool isAsExpected(const Method& method, const ExpectedSignature& expected) {
  const std::uint64_t inputs = method.getNumberOfInputs();
  const bool hasInputs =
      expected.takesMoreInputs ? inputs >= expected.inputs : inputs == expected.inputs;
  return hasInputs && method.getNumberOfOutputs() == expected.outputs &&
         method.getBlock().getAccess() == MethodAccessType::protectedAccess;
}

// Whether the body only returns `false`.
bool returnsFalse(const Method& method) {
  bool constant = true;
  SourcePosition start;
  SourcePosition end;
  return method.isSimpleConstantAssignment(method.getOutputName(0), constant, start, end) &&
         !constant;
}

// Applies the rules to one class. Each rule works on the unedited class.
class ImplRules {
 public:
  ImplRules(const ClassDefinition* definition, const ConversionChoice* choice)
      : definition_(*definition), choice_(*choice) {}

  void rename(const RenameRule& rule) {
    const Method* method = takeUp(rule.oldName);
    if (method == nullptr) return;
    // A signature without a body also prevents it.
    if (const Method* other = definition_.findMethod(rule.newName)) {
      report(ImplNameConflictAfterConversion(rule.oldName, rule.newName), rule.kind, *method,
             {.other = &other->getNode(), .findPlaces = findOtherMethod});
    } else if (!isAsExpected(*method, *rule.expected)) {
      report(ImplSignatureMismatch(rule.oldName, rule.newName), rule.kind, *method,
             {.expected = rule.expected, .findPlaces = findSignature});
    } else {
      makeRenameActions(*method, rule);
    }
  }

  // Deletes the method even if it is referenced, whatever its body is.
  void deleteObsolete(const char16_t* name) {
    constexpr auto kind = ConversionKindType::deleteObsolete;
    const Method* method = takeUp(name);
    if (method == nullptr) return;
    if (!isAsExpected(*method, queryOfInput)) {
      report(makeMessage("ImplSignatureMismatchForDeletion", {name}), kind, *method,
             {.expected = &queryOfInput, .findPlaces = findSignature});
      return;
    }
    const std::size_t conversion = addConversion(kind, *method);
    if (!choice_.isMade(conversion)) return;
    reportReferences(DeprecatedImplReferenced(name), *method, conversion);
    addDeleteAction(*method, conversion);
  }

  // Checks the signature and the references even in a class without strict defaults.
  void deleteRedundant(const RedundantMethod& rule) {
    constexpr auto kind = ConversionKindType::deleteRedundant;
    const Method* method = takeUp(rule.name);
    if (method == nullptr) return;
    if (!isAsExpected(*method, *rule.expected)) {
      report(makeMessage("ImplSignatureMismatchForDeletionStrictDefaultsRedundantNonObsolete",
                         {rule.name}),
             kind, *method, {.expected = rule.expected, .findPlaces = findSignature});
    } else if (method->isMethodReferencedInSysObj()) {
      report(makeMessage("LegacyImplReferencedStrictDefaultsRedundantNonObsolete", {rule.name}),
             kind, *method, {.findPlaces = findReferences});
    } else if (isRedundant(*method, rule.name)) {
      const std::size_t conversion = addConversion(kind, *method);
      if (choice_.isMade(conversion)) addDeleteAction(*method, conversion);
    }
  }

  RuleResult takeResult() { return std::move(result_); }

 private:
  // The parts of a finding besides its message, kind and method.
  struct FindingDetails {
    const ca::astapi::Node* other = nullptr;
    const ExpectedSignature* expected = nullptr;
    PlaceFinder* findPlaces = nullptr;
    std::size_t conversion = noConversion;
  };

  // The method of that name; null if there is none or only a signature.
  const Method* takeUp(const char16_t* name) const {
    const Method* method = definition_.findMethod(name);
    return method != nullptr && method->isFunctionDefinition() ? method : nullptr;
  }

  bool isRedundant(const Method& method, const char16_t* name) const {
    return definition_.isStrictDefaultsClass() && !definition_.isMethodDefinedInSuperClass(name) &&
           returnsFalse(method);
  }

  // --- findings ---

  void report(const resource_core::BaseMsgID& message, ConversionKindType kind,
              const Method& method, const FindingDetails& details) {
    result_.findings.push_back({.message = message,
                                .kind = kind,
                                .member = &method.getNode(),
                                .memberName = method.getNode().name,
                                .other = details.other,
                                .expected = details.expected,
                                .findPlaces = details.findPlaces,
                                .conversion = details.conversion});
  }

  void reportReferences(const resource_core::BaseMsgID& message, const Method& method,
                        std::size_t conversion) {
    if (!method.isMethodReferencedInSysObj()) return;
    report(message, result_.conversions[conversion].kind, method,
           {.findPlaces = findReferences, .conversion = conversion});
  }

  // --- edits ---

  std::size_t addConversion(ConversionKindType kind, const Method& method,
                            fl::ustring_view newName = {}) {
    return result_.addConversion({.kind = kind, .method = &method.getNode(), .newName = newName});
  }

  void makeRenameActions(const Method& method, const RenameRule& rule) {
    const std::size_t conversion = addConversion(rule.kind, method, rule.newName);
    if (!choice_.isMade(conversion)) return;
    reportReferences(LegacyImplReferenced(rule.oldName, rule.newName), method, conversion);
    result_.addAction(std::make_unique<RenameMethodAction>(rule.newName, &method), conversion);
    if (rule.kind == ConversionKindType::renameNegate) addNegationActions(method, conversion);
  }

  void addDeleteAction(const Method& method, std::size_t conversion) {
    result_.addAction(std::make_unique<DeleteMethodAction>(&method), conversion);
  }

  // The method must have an output.
  void addNegationActions(const Method& method, std::size_t conversion) {
    const fl::ustring output = method.getOutputName(0);
    bool constant = false;
    Extent extent;
    if (method.isSimpleConstantAssignment(output, constant, extent.start, extent.end)) {
      result_.addAction(
          std::make_unique<NegateReturnValueActionSimpleAssignment>(extent, &method, !constant),
          conversion);
    } else {
      addNegationLines(method, conversion, output == u"varargout" ? output + u"{1}" : output);
    }
  }

  // Negates the output before the closing `end`, then before the `return` statements from the last
  // to the first.
  void addNegationLines(const Method& method, std::size_t conversion, const fl::ustring& target) {
    const auto add = [&](SourcePosition position, bool atMethodEnd) {
      result_.addAction(
          std::make_unique<NegateReturnValueAction>(target, position, &method, atMethodEnd),
          conversion);
    };
    // The body ends one column before `end`; for an `end` in the first column the sum wraps to 0.
    SourcePosition closing = method.getBodyExtent().end;
    closing.column += 1;
    add(closing, true);
    const std::vector<Extent> returns = method.findReturnStatements();
    for (const Extent& statement : std::views::reverse(returns)) add(statement.start, false);
  }

  const ClassDefinition& definition_;
  const ConversionChoice& choice_;
  RuleResult result_;
};

}  // namespace

std::unique_ptr<AbstractActionFactory> makeImplDeprecationFactory(MetaDataInterface* metaData) {
  return std::make_unique<ImplDeprecationFactory>(metaData);
}

RuleResult ImplDeprecationFactory::createActions(const AnalyzedClass& analyzedClass,
                                                 const ConversionChoice& choice) const {
  ImplRules rules(analyzedClass.definition.get(), &choice);
  for (const RenameRule& rule : renameRules) rules.rename(rule);
  for (const char16_t* name : obsoleteMethods) rules.deleteObsolete(name);
  for (const RedundantMethod& rule : redundantMethods) rules.deleteRedundant(rule);
  return rules.takeResult();
}

}  // namespace soca
