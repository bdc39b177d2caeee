// The places where a text has names after a dot.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/text/UString.h"

namespace soca {

// Gives for each of many names the result of `fl::findBehindDot`, after a single pass over the
// text. The text and the names must outlive the index.
class DotIndex {
 public:
  // `names` may contain duplicates.
  DotIndex(fl::ustring_view text, std::vector<fl::ustring_view> names);

  // The position after the first occurrence of "." followed by `name`, which is one of the names,
  // or npos.
  std::size_t findBehind(fl::ustring_view name) const;

 private:
  struct Name {
    fl::ustring_view text;
    // The longest other name that is a prefix of this one; null if there is none. If the text after
    // a dot begins with this name, it also begins with all prefixes along the chain.
    Name* prefix = nullptr;
    std::size_t firstDot = fl::ustring_view::npos;
  };

  void linkPrefixes();
  // Sets the dot for all names without one that the text after the dot begins with.
  void noteDot(fl::ustring_view text, std::size_t dot);

  // Sorted.
  std::vector<Name> names_;
};

}  // namespace soca
