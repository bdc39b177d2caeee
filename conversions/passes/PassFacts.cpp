#include "conversions/passes/PassFacts.h"

#include <algorithm>
#include <cstddef>
#include <list>

#include "platform/paths/Overlay.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"
#include "rules/FindingPlaces.h"

namespace soca {
namespace {

// For each class, the indices of its superclasses.
using Graph = std::vector<std::vector<std::size_t>>;

// The class and all that it derives from; empty if these are very many.
Graph findAncestors(const std::string& className) {
  constexpr std::size_t mostClasses = 32;
  std::vector<std::string> names = {className};
  Graph graph;
  for (std::size_t i = 0; i < names.size(); ++i) {
    graph.emplace_back();
    const auto description = sotarn::describeClass(names[i]);
    if (description == nullptr) continue;
    for (const std::string& name : description->superClasses) {
      if (sotarn::isEnvironmentClass(name)) continue;
      const auto known = std::ranges::find(names, name);
      graph[i].push_back(static_cast<std::size_t>(known - names.begin()));
      if (known == names.end()) names.push_back(name);
    }
    if (names.size() > mostClasses) return {};
  }
  return graph;
}

bool mayReachCycle(const std::string& className) {
  const Graph graph = findAncestors(className);
  // A class goes once all its superclasses have gone; those of a cycle never do.
  std::vector<bool> isGone(graph.size());
  const auto canGo = [&](std::size_t each) {
    return !isGone[each] &&
           std::ranges::all_of(graph[each], [&](std::size_t super) { return isGone[super]; });
  };
  bool goesOn = !graph.empty();
  while (goesOn) {
    goesOn = false;
    for (std::size_t i = 0; i < graph.size(); ++i) {
      if (!canGo(i)) continue;
      isGone[i] = goesOn = true;
    }
  }
  return graph.empty() || !isGone.front();
}

// During its life, the texts are the overlay texts of this thread.
class OverlayTexts {
 public:
  using Texts = std::vector<std::pair<std::string, std::shared_ptr<const fl::ustring>>>;

  explicit OverlayTexts(const Texts& texts) {
    for (const auto& [path, text] : texts) scopes_.emplace_back(path, text);
  }

 private:
  std::list<fl::filesystem::OverlayScope> scopes_;
};

// Makes passes, and records them.
class PassMaker {
 public:
  PassMaker(ClassPasses* passes, const MethodNames* names, std::vector<PassRecord>* records)
      : passes_(*passes), names_(names), records_(*records) {
    if (names != nullptr) present_ = *names;
  }

  // Whether the pass changed the text.
  bool make(unsigned pass, const std::vector<MethodUse>& uses) {
    if (names_ == nullptr) return passes_.makePass(pass, uses);
    try {
      const bool isChanged = passes_.makePass(pass, uses);
      records_.push_back({.pass = pass,
                          .newText = isChanged ? passes_.text() : nullptr,
                          .foundMethods = passes_.foundMethods()});
      return isChanged;
    } catch (const NotSettled&) {
      records_.push_back({.pass = pass, .isUnsettled = true});
      throw;
    }
  }

  bool planNext() {
    const bool isPlanned = passes_.planNext();
    // Without such names in the text that was read, there are none in later ones.
    if (names_ != nullptr && !names_->empty() && records_.back().newText != nullptr) {
      records_.back().names = passes_.findPresentNames(present_);
      present_ = records_.back().names;
    }
    return isPlanned;
  }

 private:
  ClassPasses& passes_;
  const MethodNames* names_;
  MethodNames present_;
  std::vector<PassRecord>& records_;
};

}  // namespace

std::vector<std::string> findSuperClassesWithFile(const std::string& className) {
  std::vector<std::string> names;
  const auto description = sotarn::describeClass(className);
  if (description == nullptr) return names;
  for (const std::string& name : description->superClasses) {
    if (sotarn::isEnvironmentClass(name)) continue;
    const auto superClass = sotarn::describeClass(name);
    if (superClass != nullptr && !superClass->sourcePath.empty()) names.push_back(name);
  }
  return names;
}

bool mayFreeProperty(const std::string& superClass, const std::string& className) {
  const auto super = sotarn::describeClass(superClass);
  const auto derived = sotarn::describeClass(className);
  if (super == nullptr || derived == nullptr) return false;
  return std::ranges::any_of(super->properties, [&](const auto& each) {
    if (each.second.constrainedSet == nullptr) return false;
    const std::string companion = fl::i18n::to_string(each.second.constrainedSet->setPropertyName);
    const auto declared = super->properties.find(companion);
    return declared != super->properties.end() && declared->second.isAbstract.value_or(false) &&
           derived->properties.contains(companion);
  });
}

PassFacts findPassFacts(const PlannedClass& planned) {
  const std::string className = fl::i18n::to_string(planned.result.className);
  PassFacts facts;
  facts.superClasses = findSuperClassesWithFile(className);
  bool hasMethods = false;
  for (const RuleConversion& each : planned.conversions) {
    hasMethods |= each.method != nullptr;
    facts.hasOldSuperClasses |= each.kind == ConversionKindType::mixins;
  }
  if (hasMethods || !facts.superClasses.empty()) {
    facts.names = findMethodNames(*planned.analysis);
  }
  if (facts.superClasses.empty()) return facts;
  facts.mayReachCycle = mayReachCycle(className);
  facts.hasAbstractFinding = std::ranges::any_of(planned.findings, [](const RuleFinding& finding) {
    return finding.findPlaces == findAbstractAttributes;
  });
  return facts;
}

void makeAllPasses(ClassPasses& passes, const std::vector<PassView>& views,
                   const MethodNames* names, std::vector<PassRecord>& records) {
  PassMaker maker(&passes, names, &records);
  for (const PassView& view : views) {
    const OverlayTexts overlays(view.texts);
    if (&view != &views.front() && !maker.planNext()) return;
    bool isChanged = maker.make(view.pass, view.uses);
    if (&view != &views.back()) continue;
    for (unsigned pass = view.pass + 1; isChanged; ++pass) {
      if (!maker.planNext()) return;
      isChanged = maker.make(pass, view.uses);
    }
  }
}

}  // namespace soca
