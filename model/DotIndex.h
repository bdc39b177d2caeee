// Where a text reads names through a dot.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/text/UString.h"

namespace soca {

// Finds, for each of many names, what `fl::findBehindDot` finds, after one pass over the text. The
// text and the names must outlive the index.
class DotIndex {
 public:
  // The names may repeat.
  DotIndex(fl::ustring_view text, std::vector<fl::ustring_view> names);

  // The place behind the first occurrence of "." followed by `name`, which is one of the names, or
  // npos.
  std::size_t findBehind(fl::ustring_view name) const;

 private:
  struct Name {
    fl::ustring_view text;
    // The longest other name that this one begins with; null if there is none.
    Name* prefix = nullptr;
    std::size_t firstDot = fl::ustring_view::npos;
  };

  void linkPrefixes();
  // Notes the dot for all names that the text goes on with behind it.
  void noteDot(fl::ustring_view text, std::size_t dot);

  // Sorted.
  std::vector<Name> names_;
};

}  // namespace soca
