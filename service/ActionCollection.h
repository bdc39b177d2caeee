// The classes of a call, and the results of the rule families for each.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <vector>

#include "metadata/MetaDataInterface.h"
#include "model/AnalyzedClass.h"
#include "platform/text/UString.h"
#include "rules/AbstractActionFactory.h"
#include "service/ServiceContext.h"

namespace soca {

using ClassList = std::list<std::unique_ptr<AnalyzedClass>>;

// One class with the results of all families, in the order of the families. They point to the
// class, so the fields must be destroyed from the last to the first.
struct ClassActions {
  std::unique_ptr<AnalyzedClass> analyzedClass;
  // As in RuleResult; the indices are those of the lists here.
  ActionList actions;
  std::vector<RuleFinding> findings;
  std::vector<RuleConversion> conversions;
  std::vector<ActionOwner> owners;
  // The number of actions of each factory, in the order of the factories.
  std::vector<std::size_t> actionCounts;
};

// The named class, and with `includeSuperclasses` all its superclasses, breadth first, each once.
// Exceptions of loading a class are passed on, also for a superclass that is no System object.
ClassList collectClasses(const fl::ustring& className, MetaDataInterface* metaData,
                         bool includeSuperclasses);

// Runs each factory on each class. The result has an entry for every class, in their order. Moves
// the classes out of `classes`, which then holds null pointers.
std::list<ClassActions> collectActions(ClassList& classes, const FactoryList& factories);

// The same for one class, with the conversions of the choice.
ClassActions collectClassActions(std::unique_ptr<AnalyzedClass> analyzedClass,
                                 const FactoryList& factories,
                                 const ConversionChoice& choice = ConversionChoice());

}  // namespace soca
