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

// The class itself and then, breadth first, every known class that it reaches over declared
// superclasses, each once, as they are when the hierarchy is made.
//
// Under a view of the files they stay as they are, so a long hierarchy is not listed: what is asked
// of it most is answered from what the thread remembers, and for the rest it is walked.
class Hierarchy {
 public:
  using Description = std::shared_ptr<const ClassDescription>;

  // Of null, nothing.
  explicit Hierarchy(Description first);

  // The first class of which `holds` is true; null when there is none.
  template <class Predicate>
  Description find(const Predicate& holds) const {
    for (const Description& description : classes_) {
      if (holds(*description)) return description;
    }
    return facts_ ? findFurther(std::cref(holds)) : nullptr;
  }

  // Whether the class of that name is among them.
  bool contains(std::string_view name) const;
  // Whether any of them has strict defaults.
  bool hasStrictDefaults() const;
  // Whether any class declares any abstract property, if that is known at once; else true.
  bool mayDeclareAbstract() const;

 private:
  Description findFurther(const std::function<bool(const ClassDescription&)>& holds) const;

  // Of a long hierarchy the class alone.
  std::vector<Description> classes_;
  // Only of a long hierarchy.
  std::optional<AncestryFacts> facts_;
};

}  // namespace sotarn
