// Which classes a call is about, and what the rule families say of each.
#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <vector>

#include "metadata/MetaDataInterface.h"
#include "model/AnalyzedClass.h"
#include "platform/text/UString.h"
#include "rules/Action.h"
#include "service/ServiceContext.h"

namespace soca {

using ClassList = std::list<std::unique_ptr<AnalyzedClass>>;

// One class with all that the families want to do to it, one family after the other. The actions
// point at the class, so the fields must be destroyed from the last to the first.
struct ClassActions {
  std::unique_ptr<AnalyzedClass> analyzedClass;
  ActionList actions;
  std::list<fl::ustring> messages;
};

// The named class, and with `includeSuperclasses` all its superclasses, breadth first, each once.
// What loading a class raises goes through, for a superclass that is no System object too.
ClassList collectClasses(const fl::ustring& className, MetaDataInterface* metaData,
                         bool includeSuperclasses);

// Runs each factory on each class. An entry is made for every class, in their order. Takes the
// classes out of `classes` and leaves as many null pointers there.
std::list<ClassActions> collectActions(ClassList& classes, const FactoryList& factories);

// The same for one class. `actionCounts` gets the number of actions of each factory, in order.
ClassActions collectClassActions(std::unique_ptr<AnalyzedClass> analyzedClass,
                                 const FactoryList& factories,
                                 std::vector<std::size_t>& actionCounts);

}  // namespace soca
