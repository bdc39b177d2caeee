#include "service/ActionCollection.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "service/ClassLoader.h"
#include "service/ClassWalk.h"

namespace soca {
namespace {

template <class Value>
void append(std::vector<Value>& values, std::vector<Value>& all) {
  if (all.empty()) {
    all = std::move(values);
  } else {
    std::ranges::move(values, std::back_inserter(all));
  }
}

// Moves the result of a family to the end of the entry.
void append(RuleResult& result, ClassActions& entry) {
  const auto firstAction = static_cast<std::uint32_t>(entry.actions.size());
  const auto firstConversion = static_cast<std::uint32_t>(entry.conversions.size());
  for (RuleFinding& finding : result.findings) {
    if (finding.conversion != noConversion) finding.conversion += firstConversion;
  }
  for (ActionOwner& owner : result.owners) {
    owner.action += firstAction;
    owner.conversion += firstConversion;
  }
  entry.actionCounts.push_back(result.actions.size());
  entry.actions.splice(entry.actions.end(), result.actions);
  append(result.findings, entry.findings);
  append(result.conversions, entry.conversions);
  append(result.owners, entry.owners);
}

}  // namespace

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
                                 const FactoryList& factories, const ConversionChoice& choice) {
  ClassActions entry;
  entry.analyzedClass = std::move(analyzedClass);
  for (const auto& factory : factories) {
    RuleResult result =
        factory->createActions(*entry.analyzedClass, choice.countedFrom(entry.conversions.size()));
    append(result, entry);
  }
  return entry;
}

std::list<ClassActions> collectActions(ClassList& classes, const FactoryList& factories) {
  std::list<ClassActions> entries;
  for (auto& analyzedClass : classes) {
    entries.push_back(collectClassActions(std::move(analyzedClass), factories));
  }
  return entries;
}

}  // namespace soca
