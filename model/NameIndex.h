// Finds the entries of a class's blocks by name.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/text/TextSearch.h"
#include "platform/text/UString.h"

namespace soca {

// Points to the entries (properties or methods) of some blocks, which must not move. Of two entries
// of one name the one added first is found.
//
// Up to a fixed number of entries are searched linearly; more are sorted, so that the look-up of
// all names of a class does not take quadratic time.
template <class Entry>
class NameIndex {
 public:
  void add(const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) names_.push_back({entry.nameView(), names_.size(), &entry});
  }

  // To be called once, after the last `add`.
  void finish() {
    if (isSorted()) std::ranges::sort(names_, {}, &Name::key);
  }

  // Null if no entry has the name.
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
