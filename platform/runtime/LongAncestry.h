// The class runtime's knowledge of a class with a long ancestry.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// The views are valid until the thread asks about another class.
struct LongAncestry {
  // A class that was not found, or only as a p-file.
  struct Missing {
    std::string_view name;
    // The nearest class that has it as a superclass.
    std::string_view namedBy;
    bool isPFile = false;
  };

  struct PartlyRead {
    std::string_view name;
    std::string_view namedBy;
    ReadPartType part = ReadPartType::all;
  };

  // Both nearest first, in breadth-first order.
  std::vector<Missing> missing;
  std::vector<PartlyRead> partlyRead;
  // Whether the class is among its own ancestors.
  bool isCyclic = false;
};

// Empty for a class with a short ancestry, for one that this thread has not described under the
// view of the files in force, and while there is any overlay text.
std::optional<LongAncestry> findLongAncestry(std::string_view className);

}  // namespace sotarn
