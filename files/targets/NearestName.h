// Suggestions for names that do not exist.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace soca {

// Keeps the best candidate for a misspelt name: the nearest one, by letters that are missing,
// added, wrong or swapped with a neighbour. One letter in three may be wrong; the case of ASCII
// letters and leading dashes are ignored. If no name is that near, a name that begins with the
// misspelt one is used, if it is the only one. Of equal candidates the first is used.
class NearestName {
 public:
  // Both names are UTF-8.
  explicit NearestName(std::string_view misspelt);

  void offer(std::string_view name);

  // Empty if no name is near.
  const std::string& name() const;
  // The number of wrong letters compared with `name`.
  std::size_t distance() const { return distance_; }

 private:
  fl::ustring misspelt_;
  std::size_t limit_;
  std::string nearest_;
  std::size_t distance_;
  // The first name that begins with the misspelt one, and the number of such names.
  std::string completion_;
  std::size_t completions_ = 0;
};

// "; did you mean 'name'?", or empty for an empty name.
std::string didYouMean(std::string_view name);

// The same for the nearest of the names, if there is one.
template <class Names, class Projection>
std::string didYouMean(std::string_view misspelt, const Names& names, Projection nameOf) {
  NearestName nearest(misspelt);
  for (const auto& name : names) nearest.offer(std::invoke(nameOf, name));
  return didYouMean(nearest.name());
}

}  // namespace soca
