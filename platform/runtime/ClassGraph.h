// Classes with long ancestries, walked once for all that share them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/LongAncestry.h"

namespace sotarn {

// A set of facts, each of which is in it if it is true of a class or of any that it reaches over
// declared superclasses.
using AncestryFacts = std::uint8_t;
namespace ancestryFact {
constexpr AncestryFacts isCoderSystem = 1;
constexpr AncestryFacts isSystemImpl = 2;
constexpr AncestryFacts hasStrictDefaults = 4;
constexpr AncestryFacts declaresAbstract = 8;
// Nothing is known of the class, or it is found as a p-file only.
constexpr AncestryFacts isUnknown = 16;
}  // namespace ancestryFact

constexpr std::string_view coderSystemName = "velum.system.coder.System";
constexpr std::string_view systemImplName = "velum.system.SystemImpl";

// What a thread found out under a view of the files about classes that reach many others: names,
// superclasses and facts, so that a chain of classes is walked once and not from each of them.
// Belongs to one thread. The number of classes is bounded, but for what a single class reaches.
class ClassGraph {
 public:
  // The one of this thread, for the view in force and the class path of this moment; null when no
  // view is in force.
  static ClassGraph* current();

  bool knows(std::string_view className) const { return ids_.contains(className); }

  // Whether the class was looked for and is nowhere. What lies over files does not count.
  bool knowsAsMissing(std::string_view className) const;

  // The facts of the class. Nothing if a text over some file might make them others than those that
  // the graph can tell.
  std::optional<AncestryFacts> factsOf(const ClassDescription& first);

  // Of a class that the graph knows; nothing if a text lies over some file.
  std::optional<LongAncestry> ancestryOf(std::string_view className);

 private:
  using Id = std::uint32_t;

  struct Node {
    // The key in `ids_`.
    std::string_view name;
    // In their order.
    std::vector<Id> superClasses;
    // The order in which classes were met; 0 for one that was not walked yet.
    std::uint32_t number = 0;
    // The least number of a class that this one reaches and that is not finished.
    std::uint32_t low = 0;
    // Classes that reach each other have the same; else it is greater than that of every class
    // reached. 0 until all that the class reaches was walked.
    std::uint32_t component = 0;
    // The last search that met the class.
    std::uint32_t search = 0;
    AncestryFacts facts = 0;
    bool isMissing = false;
    bool isPFile = false;
    bool isCyclic = false;
  };

  // One class on the way down to what it reaches.
  struct Step {
    Id id = 0;
    std::size_t nextSuperClass = 0;
  };

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>()(name);
    }
  };

  const Node* find(std::string_view className) const;
  Id idOf(std::string_view className);
  // Walks all that the class reaches, depth first, and finds the strongly connected components in
  // the way of Tarjan.
  void walk(std::string_view className);
  // Walks it, and forgets everything if that throws.
  void add(std::string_view className);
  void forget();
  void meet(Id id);
  void finishComponent(Id first);
  bool keepsSuperClasses(const Node& node, const ClassDescription& changed) const;
  // The class has a text over its file, and no other class has; the graph knows the files.
  std::optional<AncestryFacts> factsUnderText(const ClassDescription& first) const;

  std::uint64_t view_ = 0;
  const std::vector<PathDispatcher::Root>* roots_ = nullptr;
  std::unordered_map<std::string, Id, Hash, std::equal_to<>> ids_;
  std::vector<Node> nodes_;
  std::uint32_t lastNumber_ = 0;
  std::uint32_t lastComponent_ = 0;
  std::uint32_t lastSearch_ = 0;
  // Only while classes are added.
  std::vector<Step> path_;
  std::vector<Id> unfinished_;
};

}  // namespace sotarn
