// What the class runtime remembers of a class that derives from very many others.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace sotarn {

// The views are valid until the thread asks about another class.
struct LongAncestry {
  // A class of which nothing is known.
  struct Missing {
    std::string_view name;
    // The nearest class that names it.
    std::string_view namedBy;
    bool isPFile = false;
  };

  // Nearest first, as a walk breadth first meets them.
  std::vector<Missing> missing;
  // Whether the class derives from itself over others.
  bool isCyclic = false;
};

// Nothing for a class with a short ancestry, or one that this thread did not ask about under the
// view of the files in force, or while a text lies over some file.
std::optional<LongAncestry> findLongAncestry(std::string_view className);

}  // namespace sotarn
