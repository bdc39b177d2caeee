#include "platform/runtime/Hierarchy.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/paths/Overlay.h"

namespace sotarn {
namespace {

using Description = Hierarchy::Description;

// An ancestry with more superclasses than this is a long one.
constexpr std::size_t mostShort = 32;
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

// A set of names: searched linearly while it is small, hashed once it is large.
class NameSet {
 public:
  // Whether the name is new. The string must outlive the set.
  bool insert(std::string_view name) {
    auto* const end = names_.begin() + count_;
    if (count_ < names_.size()) {
      if (std::find(names_.begin(), end, name) != end) return false;
      names_[count_++] = name;
      return true;
    }
    if (hashed_.empty()) hashed_.insert(names_.begin(), end);
    return hashed_.insert(name).second;
  }

 private:
  std::array<std::string_view, 24> names_;
  std::size_t count_ = 0;
  std::unordered_set<std::string_view> hashed_;
};

// Appends the classes that the one class in `classes` reaches, up to the first for which `isEnough`
// is true. Returns false if it stops because there are more than `most` names.
template <class IsEnough>
bool appendAncestors(std::vector<Description>& classes, std::size_t most,
                     const IsEnough& isEnough) {
  NameSet met;
  std::size_t count = 0;
  met.insert(classes.front()->name);
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const std::vector<std::string>& superClasses = classes[i]->superClasses;
    for (const std::string& name : superClasses) {
      if (!met.insert(name)) continue;
      if (++count > most) return false;
      auto description = describeClass(name);
      if (description == nullptr) continue;
      classes.push_back(std::move(description));
      if (isEnough(*classes.back())) return true;
    }
  }
  return true;
}

}  // namespace

Hierarchy::Hierarchy(Description first) {
  if (first == nullptr) return;
  constexpr std::size_t usualSize = 8;
  classes_.reserve(usualSize);
  classes_.push_back(std::move(first));
  ClassGraph* graph = ClassGraph::current();
  if (graph != nullptr && graph->knows(classes_.front()->name)) {
    facts_ = graph->factsOf(*classes_.front());
    if (facts_) return;
  }
  const auto never = [](const ClassDescription&) { return false; };
  const bool mayBeLong = graph != nullptr && !fl::filesystem::hasOverlays();
  if (appendAncestors(classes_, mayBeLong ? mostShort : unlimited, never)) return;
  classes_.resize(1);
  facts_ = graph->factsOf(*classes_.front());
}

Description Hierarchy::findFurther(
    const std::function<bool(const ClassDescription&)>& holds) const {
  std::vector<Description> classes = {classes_.front()};
  appendAncestors(classes, unlimited, holds);
  // The class itself is known not to hold.
  return holds(*classes.back()) ? classes.back() : nullptr;
}

bool Hierarchy::contains(std::string_view name) const {
  if (facts_ && name == coderSystemName) return (*facts_ & ancestryFact::isCoderSystem) != 0;
  if (facts_ && name == systemImplName) return (*facts_ & ancestryFact::isSystemImpl) != 0;
  const auto hasName = [&](const ClassDescription& description) {
    return description.name == name;
  };
  return find(hasName) != nullptr;
}

bool Hierarchy::hasStrictDefaults() const {
  if (facts_) return (*facts_ & ancestryFact::hasStrictDefaults) != 0;
  return find([](const ClassDescription& description) { return description.strictDefaults; }) !=
         nullptr;
}

bool Hierarchy::mayDeclareAbstract() const {
  return !facts_ || (*facts_ & ancestryFact::declaresAbstract) != 0;
}

}  // namespace sotarn
