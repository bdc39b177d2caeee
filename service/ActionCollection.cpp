#include "service/ActionCollection.h"

#include <utility>

#include "service/ClassLoader.h"
#include "service/ClassWalk.h"

namespace soca {

ClassList collectClasses(const fl::ustring& className, MetaDataInterface* metaData,
                         bool includeSuperclasses) {
  ClassList classes;
  ClassWalk walk(className);
  while (!walk.isDone()) {
    classes.push_back(ClassLoader{walk.next(), metaData}.load());
    if (!includeSuperclasses) break;
    walk.add(classes.back()->metaClass->getSuperClassNames());
  }
  return classes;
}

ClassActions collectClassActions(std::unique_ptr<AnalyzedClass> analyzedClass,
                                 const FactoryList& factories,
                                 std::vector<std::size_t>& actionCounts) {
  ClassActions entry;
  entry.analyzedClass = std::move(analyzedClass);
  for (const auto& factory : factories) {
    RuleResult result = factory->createActions(*entry.analyzedClass);
    actionCounts.push_back(result.actions.size());
    entry.actions.splice(entry.actions.end(), result.actions);
    entry.messages.splice(entry.messages.end(), result.messages);
  }
  return entry;
}

std::list<ClassActions> collectActions(ClassList& classes, const FactoryList& factories) {
  std::list<ClassActions> entries;
  for (auto& analyzedClass : classes) {
    std::vector<std::size_t> actionCounts;
    entries.push_back(collectClassActions(std::move(analyzedClass), factories, actionCounts));
  }
  return entries;
}

}  // namespace soca
