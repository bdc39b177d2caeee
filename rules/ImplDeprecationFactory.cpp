#include "rules/ImplDeprecationFactory.h"

#include <cstdint>
#include <list>
#include <memory>
#include <ranges>
#include <vector>

#include "diagnostics/Findings.h"
#include "diagnostics/Messages.h"
#include "model/AnalyzedClass.h"
#include "model/ClassDefinition.h"
#include "model/Method.h"
#include "model/MethodsBlock.h"
#include "platform/text/UString.h"
#include "rules/MethodActions.h"
#include "rules/RuleFamilies.h"

namespace soca {
namespace {

using VELUM::system::Analyzer::DeprecatedImplReferenced;
using VELUM::system::Analyzer::ImplNameConflictAfterConversion;
using VELUM::system::Analyzer::ImplSignatureMismatch;
using VELUM::system::Analyzer::LegacyImplReferenced;

// The result of the rules for one method. The lists of actions are applied in this order.
struct ImplConversion {
  const Method* method;
  ActionList renameActions;
  ActionList negationActions;
  ActionList deleteActions;
  std::list<fl::ustring> messages;

  explicit ImplConversion(const Method& aMethod) : method(&aMethod) {}
};

struct RedundantMethod {
  const char16_t* name;
  // Includes the object.
  std::uint64_t inputs;
};

// Methods that are redundant in a class with strict defaults if they return `false`.
constexpr RedundantMethod kRedundantMethods[] = {
    {u"isInputDataTypeMutableImpl", 2},           {u"isInputSizeMutableImpl", 2},
    {u"isInputComplexityMutableImpl", 2},         {u"isDiscreteStateSpecificationMutableImpl", 1},
    {u"isTunablePropertyDataTypeMutableImpl", 1},
};

void addRenameAction(ImplConversion& conversion, const fl::ustring& newName) {
  conversion.renameActions.push_back(
      std::make_unique<RenameMethodAction>(newName, conversion.method));
}

void addDeleteAction(ImplConversion& conversion) {
  conversion.deleteActions.push_back(std::make_unique<DeleteMethodAction>(conversion.method));
}

// Negates the output before the closing `end`, then before the `return` statements from the last to
// the first.
void addNegationLines(ImplConversion& conversion, const fl::ustring& target) {
  const Method& method = *conversion.method;
  const auto add = [&](SourcePosition position, bool atMethodEnd) {
    conversion.negationActions.push_back(
        std::make_unique<NegateReturnValueAction>(target, position, &method, atMethodEnd));
  };
  // The body ends one column before `end`; for an `end` in the first column the sum wraps to 0.
  SourcePosition closing = method.getBodyExtent().end;
  closing.column += 1;
  add(closing, true);
  const std::vector<Extent> returns = method.findReturnStatements();
  for (const Extent& statement : std::views::reverse(returns)) add(statement.start, false);
}

// The method must have an output.
void addNegationActions(ImplConversion& conversion) {
  const Method& method = *conversion.method;
  const fl::ustring output = method.getOutputName(0);
  bool constant = false;
  Extent extent;
  if (method.isSimpleConstantAssignment(output, constant, extent.start, extent.end)) {
    conversion.negationActions.push_back(
        std::make_unique<NegateReturnValueActionSimpleAssignment>(extent, &method, !constant));
    return;
  }
  addNegationLines(conversion, output == u"varargout" ? output + u"{1}" : output);
}

bool isProtected(const Method& method) {
  return method.getBlock().getAccess() == MethodAccessType::protectedAccess;
}

// Whether the method is a protected query: `inputs` inputs, including the object, and one output.
bool isQuery(const Method& method, std::uint64_t inputs) {
  return method.getNumberOfInputs() == inputs && method.getNumberOfOutputs() == 1 &&
         isProtected(method);
}

bool isChangeHandler(const Method& method) {
  return method.getNumberOfInputs() >= 2 && method.getNumberOfOutputs() == 0 && isProtected(method);
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
  explicit ImplRules(const ClassDefinition& definition) : definition_(definition) {}

  // For a query whose new name has the opposite meaning.
  void negateAndRename(const char16_t* oldName, const char16_t* newName) {
    ImplConversion* conversion = takeUp(oldName);
    if (conversion == nullptr || reportConflict(*conversion, oldName, newName)) return;
    if (!isQuery(*conversion->method, 2)) {
      report(*conversion, ImplSignatureMismatch(oldName, newName));
      return;
    }
    reportReference(*conversion, LegacyImplReferenced(oldName, newName));
    addNegationActions(*conversion);
    addRenameAction(*conversion, newName);
  }

  void rename(const char16_t* oldName, const char16_t* newName) {
    ImplConversion* conversion = takeUp(oldName);
    if (conversion == nullptr || reportConflict(*conversion, oldName, newName)) return;
    if (!isChangeHandler(*conversion->method)) {
      report(*conversion, ImplSignatureMismatch(oldName, newName));
      return;
    }
    reportReference(*conversion, LegacyImplReferenced(oldName, newName));
    addRenameAction(*conversion, newName);
  }

  // Deletes the method even if it is referenced, whatever its body is.
  void deleteObsolete(const char16_t* name) {
    ImplConversion* conversion = takeUp(name);
    if (conversion == nullptr) return;
    if (!isQuery(*conversion->method, 2)) {
      report(*conversion, "ImplSignatureMismatchForDeletion", name);
      return;
    }
    reportReference(*conversion, DeprecatedImplReferenced(name));
    addDeleteAction(*conversion);
  }

  // Checks the signature and the references even in a class without strict defaults.
  void deleteRedundant(const RedundantMethod& rule) {
    ImplConversion* conversion = takeUp(rule.name);
    if (conversion == nullptr) return;
    const Method& method = *conversion->method;
    if (!isQuery(method, rule.inputs)) {
      report(*conversion, "ImplSignatureMismatchForDeletionStrictDefaultsRedundantNonObsolete",
             rule.name);
    } else if (method.isMethodReferencedInSysObj()) {
      report(*conversion, "LegacyImplReferencedStrictDefaultsRedundantNonObsolete", rule.name);
    } else if (definition_.isStrictDefaultsClass() &&
               !definition_.isMethodDefinedInSuperClass(rule.name) && returnsFalse(method)) {
      addDeleteAction(*conversion);
    }
  }

  RuleResult takeResult() {
    RuleResult result;
    for (ImplConversion& conversion : conversions_) {
      result.actions.splice(result.actions.end(), conversion.renameActions);
      result.actions.splice(result.actions.end(), conversion.negationActions);
      result.actions.splice(result.actions.end(), conversion.deleteActions);
      result.messages.splice(result.messages.end(), conversion.messages);
    }
    return result;
  }

 private:
  // A new record for the method of that name; null if there is none or only a signature.
  ImplConversion* takeUp(const char16_t* name) {
    const Method* method = definition_.findMethod(name);
    if (method == nullptr || !method->isFunctionDefinition()) return nullptr;
    return &conversions_.emplace_back(*method);
  }

  // Whether the class has a method of the new name, if only a signature; adds a message if so.
  bool reportConflict(ImplConversion& conversion, const char16_t* oldName,
                      const char16_t* newName) const {
    if (definition_.findMethod(newName) == nullptr) return false;
    report(conversion, ImplNameConflictAfterConversion(oldName, newName));
    return true;
  }

  static void reportReference(ImplConversion& conversion, const resource_core::BaseMsgID& message) {
    if (conversion.method->isMethodReferencedInSysObj()) report(conversion, message);
  }

  static void report(ImplConversion& conversion, const resource_core::BaseMsgID& message) {
    conversion.messages.push_back(findingText(message));
  }

  static void report(ImplConversion& conversion, const char* id, const char16_t* name) {
    conversion.messages.push_back(findingText(id, {name}));
  }

  const ClassDefinition& definition_;
  // In the order of the rules.
  std::list<ImplConversion> conversions_;
};

}  // namespace

std::unique_ptr<AbstractActionFactory> makeImplDeprecationFactory(MetaDataInterface* metaData) {
  return std::make_unique<ImplDeprecationFactory>(metaData);
}

RuleResult ImplDeprecationFactory::createActions(const AnalyzedClass& analyzedClass) const {
  ImplRules rules(*analyzedClass.definition);
  rules.negateAndRename(u"isInputSizeLockedImpl", u"isInputSizeMutableImpl");
  rules.negateAndRename(u"isInputComplexityLockedImpl", u"isInputComplexityMutableImpl");
  rules.rename(u"processInputSizeChangeImpl", u"processInputSpecificationChangeImpl");
  rules.deleteObsolete(u"isOutputComplexityLockedImpl");
  rules.deleteObsolete(u"isOutputSizeLockedImpl");
  for (const RedundantMethod& rule : kRedundantMethods) rules.deleteRedundant(rule);
  return rules.takeResult();
}

}  // namespace soca
