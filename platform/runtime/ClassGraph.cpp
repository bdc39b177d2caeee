#include "platform/runtime/ClassGraph.h"

#include <algorithm>
#include <memory>
#include <unordered_set>
#include <utility>

#include "platform/paths/FileView.h"
#include "platform/paths/Overlay.h"

namespace sotarn {
namespace {

using namespace ancestryFact;

// With more classes than this, everything is dropped before the next one is added.
constexpr std::size_t mostNodes = 1'000'000;

bool declaresAnyAbstract(const ClassDescription& description) {
  return std::ranges::any_of(description.properties, [](const auto& property) {
    return property.second.isAbstract.value_or(false);
  });
}

// The facts that are true of the class itself.
AncestryFacts ownFacts(const ClassDescription& description) {
  AncestryFacts facts = 0;
  if (description.name == coderSystemName) facts |= isCoderSystem;
  if (description.name == systemImplName) facts |= isSystemImpl;
  if (description.strictDefaults) facts |= hasStrictDefaults;
  if (declaresAnyAbstract(description)) facts |= declaresAbstract;
  if (description.origin == ClassOriginType::pFileOnly) facts |= isUnknown;
  if (description.readPart != ReadPartType::all) facts |= isUnknown;
  return facts;
}

}  // namespace

ClassGraph* ClassGraph::current() {
  thread_local std::unique_ptr<ClassGraph> graph;
  const std::uint64_t view = fl::filesystem::FileView::current();
  if (view == 0) return nullptr;
  const auto* roots = &PathDispatcher::getDispatcher().roots();
  if (graph == nullptr || graph->view_ != view || graph->roots_ != roots) {
    graph = std::make_unique<ClassGraph>();
    graph->view_ = view;
    graph->roots_ = roots;
  }
  return graph.get();
}

bool ClassGraph::knowsAsMissing(std::string_view className) const {
  const Node* node = find(className);
  return node != nullptr && node->isMissing;
}

std::optional<AncestryFacts> ClassGraph::factsOf(const ClassDescription& first) {
  if (fl::filesystem::hasOverlays()) return factsUnderText(first);
  if (!knows(first.name)) add(first.name);
  return find(first.name)->facts;
}

std::optional<LongAncestry> ClassGraph::ancestryOf(std::string_view className) {
  const auto known = ids_.find(className);
  if (known == ids_.end() || fl::filesystem::hasOverlays()) return std::nullopt;
  LongAncestry ancestry;
  ancestry.isCyclic = nodes_[known->second].isCyclic;
  struct Met {
    Id id;
    Id namedBy;
  };
  std::vector<Met> met = {{known->second, known->second}};
  nodes_[known->second].search = ++lastSearch_;
  for (std::size_t i = 0; i < met.size(); ++i) {
    const auto [current, namedBy] = met[i];
    const Node& node = nodes_[current];
    if (i > 0 && (node.isMissing || node.isPFile)) {
      ancestry.missing.push_back({node.name, nodes_[namedBy].name, node.isPFile});
    }
    if (i > 0 && node.readPart != ReadPartType::all) {
      ancestry.partlyRead.push_back({node.name, nodes_[namedBy].name, node.readPart});
    }
    for (const Id id : node.superClasses) {
      Node& superClass = nodes_[id];
      // A class without the fact isUnknown reaches none that is missing or partly read.
      if (superClass.search == lastSearch_ || (superClass.facts & isUnknown) == 0) continue;
      superClass.search = lastSearch_;
      met.push_back({id, current});
    }
  }
  return ancestry;
}

const ClassGraph::Node* ClassGraph::find(std::string_view className) const {
  const auto found = ids_.find(className);
  return found == ids_.end() ? nullptr : &nodes_[found->second];
}

ClassGraph::Id ClassGraph::idOf(std::string_view className) {
  const auto known = ids_.find(className);
  if (known != ids_.end()) return known->second;
  const auto added = ids_.emplace(className, static_cast<Id>(nodes_.size())).first;
  nodes_.emplace_back().name = added->first;
  return added->second;
}

void ClassGraph::add(std::string_view className) {
  if (nodes_.size() > mostNodes) forget();
  try {
    walk(className);
  } catch (...) {
    // An unfinished class must not be found later.
    forget();
    throw;
  }
}

void ClassGraph::forget() {
  ids_.clear();
  nodes_.clear();
  path_.clear();
  unfinished_.clear();
}

void ClassGraph::walk(std::string_view className) {
  meet(idOf(className));
  while (!path_.empty()) {
    Step& step = path_.back();
    Node& node = nodes_[step.id];
    if (step.nextSuperClass < node.superClasses.size()) {
      const Id id = node.superClasses[step.nextSuperClass++];
      if (nodes_[id].number == 0) {
        meet(id);
      } else if (nodes_[id].component == 0) {
        node.low = std::min(node.low, nodes_[id].number);
      }
      continue;
    }
    const Id finished = step.id;
    path_.pop_back();
    if (!path_.empty()) {
      Node& below = nodes_[path_.back().id];
      below.low = std::min(below.low, node.low);
    }
    if (node.low == node.number) finishComponent(finished);
  }
}

void ClassGraph::meet(Id id) {
  nodes_[id].number = nodes_[id].low = ++lastNumber_;
  path_.push_back({id, 0});
  unfinished_.push_back(id);
  const auto description = describeClass(nodes_[id].name);
  if (description == nullptr) {
    nodes_[id].isMissing = true;
    nodes_[id].facts = isUnknown;
    return;
  }
  std::vector<Id> superClasses;
  superClasses.reserve(description->superClasses.size());
  for (const std::string& name : description->superClasses) superClasses.push_back(idOf(name));
  Node& node = nodes_[id];
  node.superClasses = std::move(superClasses);
  node.facts = ownFacts(*description);
  node.isPFile = description->origin == ClassOriginType::pFileOnly;
  node.readPart = description->readPart;
}

// The classes from `first` on reach each other; all other classes that they reach are finished.
void ClassGraph::finishComponent(Id first) {
  const auto begin = std::find(unfinished_.rbegin(), unfinished_.rend(), first).base() - 1;
  ++lastComponent_;
  for (auto id = begin; id != unfinished_.end(); ++id) nodes_[*id].component = lastComponent_;
  AncestryFacts facts = 0;
  bool isCyclic = false;
  for (auto id = begin; id != unfinished_.end(); ++id) {
    facts |= nodes_[*id].facts;
    for (const Id superClass : nodes_[*id].superClasses) {
      isCyclic = isCyclic || nodes_[superClass].component == lastComponent_;
      facts |= nodes_[superClass].facts;
    }
  }
  for (auto id = begin; id != unfinished_.end(); ++id) {
    nodes_[*id].facts = facts;
    nodes_[*id].isCyclic = isCyclic;
  }
  unfinished_.erase(begin, unfinished_.end());
}

bool ClassGraph::keepsSuperClasses(const Node& node, const ClassDescription& changed) const {
  const std::unordered_set<std::string_view> names(changed.superClasses.begin(),
                                                   changed.superClasses.end());
  return std::ranges::all_of(node.superClasses,
                             [&](Id id) { return names.contains(nodes_[id].name); });
}

std::optional<AncestryFacts> ClassGraph::factsUnderText(const ClassDescription& first) const {
  const Node* inFile = find(first.name);
  const bool isOnlyOne =
      fl::filesystem::overlayCount() == 1 && fl::filesystem::hasOverlayOfClass(first.name);
  if (inFile == nullptr || !isOnlyOne) return std::nullopt;
  AncestryFacts facts = ownFacts(first);
  bool isInCycle = false;
  std::vector<std::string> names = first.superClasses;
  std::unordered_set<std::string> met = {first.name};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!met.insert(names[i]).second) continue;
    const Node* node = find(names[i]);
    if (node == nullptr) {
      const auto description = describeClass(names[i]);
      if (description == nullptr) {
        facts |= isUnknown;
        continue;
      }
      facts |= ownFacts(*description);
      names.insert(names.end(), description->superClasses.begin(), description->superClasses.end());
    } else if (node->component < inFile->component) {
      // A lower component: the superclass does not reach the class.
      facts |= node->facts;
    } else if (node->component == inFile->component) {
      isInCycle = true;
    } else {
      return std::nullopt;
    }
  }
  if (!isInCycle) return facts;
  // If the class keeps all its superclasses, the classes of the cycle reach the same as before. A
  // fact that the class itself has lost may also come from another class of the cycle: the answer
  // is unknown.
  const AncestryFacts lost = inFile->facts & static_cast<AncestryFacts>(~facts);
  if (!keepsSuperClasses(*inFile, first) || (lost & (hasStrictDefaults | declaresAbstract)) != 0) {
    return std::nullopt;
  }
  return facts | inFile->facts;
}

std::optional<LongAncestry> findLongAncestry(std::string_view className) {
  ClassGraph* graph = ClassGraph::current();
  return graph == nullptr ? std::nullopt : graph->ancestryOf(className);
}

}  // namespace sotarn
