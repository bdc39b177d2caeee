// The classes that a class derives from.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// The class itself and then, breadth first, every known class that it reaches over declared
// superclasses, each once, as they are when the hierarchy is made.
class Hierarchy {
 public:
  // Of null, nothing.
  explicit Hierarchy(std::shared_ptr<const ClassDescription> first);

  // The first class of which `holds` is true; null when there is none.
  template <class Predicate>
  const ClassDescription* find(const Predicate& holds) const {
    const auto found = std::ranges::find_if(
        classes_, [&](const auto& description) { return holds(*description); });
    return found == classes_.end() ? nullptr : found->get();
  }

 private:
  std::vector<std::shared_ptr<const ClassDescription>> classes_;
};

}  // namespace sotarn
