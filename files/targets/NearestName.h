// What somebody may have meant by a name that there is not.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace soca {

// Of the names that it is offered, keeps the one that is most likely meant by a misspelt one: the
// nearest, by letters that are missing, too many, wrong or swapped with a neighbour. One letter in
// three may be wrong; the case of ASCII letters and dashes in front don't count. If no name is that
// near, the only one that begins with the misspelt one is meant. Of equals the first one wins.
class NearestName {
 public:
  // Both names are UTF-8.
  explicit NearestName(std::string_view misspelt);

  void offer(std::string_view name);

  // Empty if nothing is near.
  const std::string& name() const;
  // How many letters are wrong in `name`.
  std::size_t distance() const { return distance_; }

 private:
  fl::ustring misspelt_;
  std::size_t limit_;
  std::string nearest_;
  std::size_t distance_;
  // What begins with the misspelt name, and how many names do.
  std::string completion_;
  std::size_t completions_ = 0;
};

// "; did you mean 'name'?", or nothing for an empty name.
std::string didYouMean(std::string_view name);

// The same for the one of the names that is nearest, if there is one.
template <class Names, class Projection>
std::string didYouMean(std::string_view misspelt, const Names& names, Projection nameOf) {
  NearestName nearest(misspelt);
  for (const auto& name : names) nearest.offer(std::invoke(nameOf, name));
  return didYouMean(nearest.name());
}

}  // namespace soca
