// Finds the entries of a class's blocks by name.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/text/TextSearch.h"
#include "platform/text/UString.h"

namespace soca {

// Points at the entries (properties or methods) of some blocks, which must stay where they are. Of
// two entries of one name the one that was added first is found.
//
// A class of ordinary size has so few entries that it is searched through; only a large one is
// sorted, so that looking up every name of a class does not grow with the square of its size.
template <class Entry>
class NameIndex {
 public:
  void add(const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) names_.push_back({entry.nameView(), names_.size(), &entry});
  }

  // To be called once, behind the last `add`.
  void finish() {
    if (isSorted()) std::ranges::sort(names_, {}, &Name::key);
  }

  // Null for a name that no entry has.
  const Entry* find(fl::ustring_view name) const {
    const auto isName = [name](fl::ustring_view text) { return fl::areEqualTexts(text, name); };
    const auto found = isSorted() ? std::ranges::lower_bound(names_, name, {}, &Name::text)
                                  : std::ranges::find_if(names_, isName, &Name::text);
    return found != names_.end() && isName(found->text) ? found->entry : nullptr;
  }

 private:
  struct Name {
    fl::ustring_view text;
    std::size_t ordinal = 0;
    const Entry* entry = nullptr;

    // Entries of one name stay in their order.
    std::pair<fl::ustring_view, std::size_t> key() const { return {text, ordinal}; }
  };

  static constexpr std::size_t largestSearched = 64;

  bool isSorted() const { return names_.size() > largestSearched; }

  std::vector<Name> names_;
};

}  // namespace soca
