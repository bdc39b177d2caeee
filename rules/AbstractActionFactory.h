// A rule family: the edits and messages for the deprecated forms in a class.
#pragma once

#include <list>

#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {

struct AnalyzedClass;

// The result of one rule family for one class.
struct RuleResult {
  // In the order in which they are to be applied. They must not outlive the class.
  ActionList actions;
  // Finished texts about what cannot be converted or needs a person's attention.
  std::list<fl::ustring> messages;
};

class AbstractActionFactory {
 public:
  virtual ~AbstractActionFactory() = default;

  // Keeps nothing of the class. Exceptions of the class's metadata are passed on.
  virtual RuleResult createActions(const AnalyzedClass& analyzedClass) const = 0;

 protected:
  AbstractActionFactory() = default;
  AbstractActionFactory(const AbstractActionFactory&) = default;
  AbstractActionFactory& operator=(const AbstractActionFactory&) = default;
};

}  // namespace soca
