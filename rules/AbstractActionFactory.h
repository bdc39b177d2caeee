// A rule family: what it sees in a class, it says as actions and messages.
#pragma once

#include <list>

#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {

struct AnalyzedClass;

// What one rule family gives back for one class.
struct RuleResult {
  // In the order in which they are to be applied. They must not outlive the class.
  ActionList actions;
  // Finished texts of what can't be converted or needs a person's attention.
  std::list<fl::ustring> messages;
};

class AbstractActionFactory {
 public:
  virtual ~AbstractActionFactory() = default;

  // Keeps nothing of the class. What the class's metadata throws goes through.
  virtual RuleResult createActions(const AnalyzedClass& analyzedClass) const = 0;

 protected:
  AbstractActionFactory() = default;
  AbstractActionFactory(const AbstractActionFactory&) = default;
  AbstractActionFactory& operator=(const AbstractActionFactory&) = default;
};

}  // namespace soca
