// The graph of classes with long ancestries, walked once for all classes that share them.
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

// A set of facts. A fact is in it if it is true of the class or of any class that it reaches by
// declared superclasses.
using AncestryFacts = std::uint8_t;
namespace ancestryFact {
constexpr AncestryFacts isCoderSystem = 1;
constexpr AncestryFacts isSystemImpl = 2;
constexpr AncestryFacts hasStrictDefaults = 4;
constexpr AncestryFacts declaresAbstract = 8;
// The class was not found, only as a p-file, or could be read only in part.
constexpr AncestryFacts isUnknown = 16;
}  // namespace ancestryFact

constexpr std::string_view coderSystemName = "velum.system.coder.System";
constexpr std::string_view systemImplName = "velum.system.SystemImpl";

// The classes that reach many others, as a thread found them under a view of the files: names,
// superclasses and facts. A chain of classes is walked once instead of once for each of its
// classes. Belongs to one thread. The number of classes is bounded, except for those that a single
// class reaches.
class ClassGraph {
 public:
  // The graph of this thread, for the view in force and the current class path; null if no view is
  // in force.
  static ClassGraph* current();

  bool knows(std::string_view className) const { return ids_.contains(className); }

  // Whether the class was searched and not found. Overlay texts are ignored.
  bool knowsAsMissing(std::string_view className) const;

  // The facts of the class. Empty if an overlay text might change them in a way that the graph
  // cannot determine.
  std::optional<AncestryFacts> factsOf(const ClassDescription& first);

  // Of a class that the graph knows; empty if there is any overlay text.
  std::optional<LongAncestry> ancestryOf(std::string_view className);

 private:
  using Id = std::uint32_t;

  struct Node {
    // The key in `ids_`.
    std::string_view name;
    // In the order of the declaration.
    std::vector<Id> superClasses;
    // The order in which the walk reached the classes; 0 before the walk.
    std::uint32_t number = 0;
    // The lowest number of an unfinished class that this one is known to reach.
    std::uint32_t low = 0;
    // Classes that reach each other have the same component; it is greater than those of all other
    // classes that they reach. 0 until the walk of all these is finished.
    std::uint32_t component = 0;
    // The last search that reached the class.
    std::uint32_t search = 0;
    AncestryFacts facts = 0;
    bool isMissing = false;
    bool isPFile = false;
    ReadPartType readPart = ReadPartType::all;
    bool isCyclic = false;
  };

  // One class on the current path of the walk.
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
  // Walks all classes that the class reaches, depth first, and finds the strongly connected
  // components by Tarjan's algorithm.
  void walk(std::string_view className);
  // Calls `walk`, and drops everything if that throws.
  void add(std::string_view className);
  void forget();
  void meet(Id id);
  void finishComponent(Id first);
  bool keepsSuperClasses(const Node& node, const ClassDescription& changed) const;
  // For a class that is the only one with an overlay text, and whose file is in the graph.
  std::optional<AncestryFacts> factsUnderText(const ClassDescription& first) const;

  std::uint64_t view_ = 0;
  const std::vector<PathDispatcher::Root>* roots_ = nullptr;
  std::unordered_map<std::string, Id, Hash, std::equal_to<>> ids_;
  std::vector<Node> nodes_;
  std::uint32_t lastNumber_ = 0;
  std::uint32_t lastComponent_ = 0;
  std::uint32_t lastSearch_ = 0;
  // Used only during `add`.
  std::vector<Step> path_;
  std::vector<Id> unfinished_;
};

}  // namespace sotarn
