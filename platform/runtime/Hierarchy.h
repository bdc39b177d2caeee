// The classes that a class derives from.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/ClassGraph.h"

namespace sotarn {

// The class itself and then, breadth first, every known class that it reaches by declared
// superclasses, each once, in their state when the hierarchy is made.
//
// Under a view of the files a long hierarchy is not listed: `contains` and `hasStrictDefaults` use
// the facts of the ClassGraph for the usual questions, and `find` walks the classes when called.
class Hierarchy {
 public:
  using Description = std::shared_ptr<const ClassDescription>;

  // The hierarchy of null is empty.
  explicit Hierarchy(Description first);

  // The first class for which `holds` is true; null if there is none.
  template <class Predicate>
  Description find(const Predicate& holds) const {
    for (const Description& description : classes_) {
      if (holds(*description)) return description;
    }
    return facts_ ? findFurther(std::cref(holds)) : nullptr;
  }

  bool contains(std::string_view name) const;
  // Whether any of them has strict defaults.
  bool hasStrictDefaults() const;
  // False only if it is known that no class declares an abstract property.
  bool mayDeclareAbstract() const;

 private:
  Description findFurther(const std::function<bool(const ClassDescription&)>& holds) const;

  // Only the class itself if the hierarchy is long.
  std::vector<Description> classes_;
  // Empty if the hierarchy is short.
  std::optional<AncestryFacts> facts_;
};

}  // namespace sotarn
