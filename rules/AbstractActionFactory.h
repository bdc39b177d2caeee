// A rule family: the conversions, edits and findings for the deprecated forms in a class.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "rules/Action.h"
#include "rules/RuleConversion.h"
#include "rules/RuleFinding.h"

namespace soca {

struct AnalyzedClass;

// The result of one rule family for one class. It must not outlive the class.
struct RuleResult {
  // The edits of the conversions that are made, in the order in which they are to be applied.
  ActionList actions;
  // What cannot be converted or needs a person's attention, in the order of the messages.
  std::vector<RuleFinding> findings;
  // All conversions that the rules found, made or not.
  std::vector<RuleConversion> conversions;
  // The conversions that each action results from, in the order of the actions: at least one. An
  // action that results from several belongs to none of them alone, such as the joining of blocks.
  std::vector<ActionOwner> owners;

  // Appends the conversion and returns its index.
  std::size_t addConversion(const RuleConversion& conversion);
  void addAction(std::unique_ptr<Action> action, std::size_t conversion);
  // For several conversions, which may be repeated.
  void addAction(std::unique_ptr<Action> action, std::vector<std::size_t> conversionsOfAction);
};

class AbstractActionFactory {
 public:
  virtual ~AbstractActionFactory() = default;

  // Finds the conversions of the class and makes those of the choice. Only these determine which
  // blocks are deleted and which are joined; a conversion that is not made does not change its
  // text. Keeps nothing of the class. Exceptions of the class's metadata are passed on.
  virtual RuleResult createActions(const AnalyzedClass& analyzedClass,
                                   const ConversionChoice& choice) const = 0;
  // Makes all conversions.
  RuleResult createActions(const AnalyzedClass& analyzedClass) const {
    return createActions(analyzedClass, ConversionChoice());
  }

 protected:
  AbstractActionFactory() = default;
  AbstractActionFactory(const AbstractActionFactory&) = default;
  AbstractActionFactory& operator=(const AbstractActionFactory&) = default;
};

}  // namespace soca
