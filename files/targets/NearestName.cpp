#include "files/targets/NearestName.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/text/Conversions.h"

namespace soca {
namespace {

// Longer names are generated, not typed.
constexpr std::size_t longestName = 200;

// The shortest beginning of a name that is completed.
constexpr std::size_t shortestBeginning = 2;

// The form for comparison: without the dashes of an option, and in lower case.
fl::ustring fold(std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of('-'), name.size()));
  fl::ustring folded = fl::i18n::to_ustring(name);
  for (char16_t& unit : folded) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit - u'A' + u'a');
  }
  return folded;
}

// The number of letters to add, delete, change, or swap with the next one, each letter once at
// most, to turn one word into the other.
std::size_t distanceBetween(fl::ustring_view left, fl::ustring_view right) {
  // Rows of the table of distances between prefixes of both: the current one and two before it.
  std::vector<std::size_t> current(right.size() + 1);
  std::vector<std::size_t> previous(current.size());
  std::vector<std::size_t> beforePrevious(current.size());
  for (std::size_t j = 0; j < current.size(); ++j) current[j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::swap(beforePrevious, previous);
    std::swap(previous, current);
    current[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t change = left[i - 1] == right[j - 1] ? 0 : 1;
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + change});
      const bool isSwapped =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isSwapped) current[j] = std::min(current[j], beforePrevious[j - 2] + 1);
    }
  }
  return current.back();
}

}  // namespace

NearestName::NearestName(std::string_view misspelt)
    : misspelt_(fold(misspelt)),
      limit_(std::max<std::size_t>(misspelt_.size(), 3) / 3),
      distance_(limit_ + 1) {}

void NearestName::offer(std::string_view name) {
  const fl::ustring folded = fold(name);
  if (folded.empty() || misspelt_.empty() || misspelt_.size() > longestName) return;
  if (misspelt_.size() >= shortestBeginning && folded.starts_with(misspelt_)) {
    if (completions_++ == 0) completion_ = name;
  }
  // The names must have at least one letter in common.
  const std::size_t limit = std::min({distance_, misspelt_.size(), folded.size()});
  const auto [shorter, longer] = std::minmax({misspelt_.size(), folded.size()});
  if (longer - shorter >= limit) return;
  const std::size_t distance = distanceBetween(misspelt_, folded);
  if (distance >= limit) return;
  distance_ = distance;
  nearest_ = name;
}

const std::string& NearestName::name() const {
  return nearest_.empty() && completions_ == 1 ? completion_ : nearest_;
}

std::string didYouMean(std::string_view name) {
  return name.empty() ? std::string() : fmt::format("; did you mean '{}'?", name);
}

}  // namespace soca
