#include "conversions/choice/Wishes.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

namespace soca {
namespace {

constexpr const char* notSelected = "soca:NotSelected";

bool isUnselected(const Wish& wish) { return wish.leftOut && wish.leftOut->id == notSelected; }

class WishFinder {
 public:
  WishFinder(const ChoosingClass& owner, const ConversionSelection& selection, RiskType highestRisk)
      : owner_(owner), selection_(selection), highestRisk_(highestRisk) {
    if (selection.ids) chosenClass_ = selection.ids->findClass(owner.name);
  }

  Wish wishFor(const std::string& id) const {
    Wish wish{std::nullopt, highestRisk_};
    const auto accepted = acceptedRisk(id);
    if (!accepted) {
      wish.leftOut = {notSelected, "it is not among those that were selected", {}};
    } else if (owner_.isOutdated) {
      wish.leftOut = {"soca:SelectionOutdated", "its file has changed since it was selected", {}};
    } else {
      wish.highestRisk = std::min(highestRisk_, *accepted);
    }
    return wish;
  }

 private:
  // Empty if the conversion is not chosen.
  std::optional<RiskType> acceptedRisk(const std::string& id) const {
    if (!selection_.isChosenByPatterns(id)) return std::nullopt;
    if (!selection_.ids) return RiskType::unsafe;
    return chosenClass_ ? selection_.ids->acceptedRisk(*chosenClass_, id) : std::nullopt;
  }

  const ChoosingClass& owner_;
  const ConversionSelection& selection_;
  RiskType highestRisk_;
  std::optional<std::size_t> chosenClass_;
};

// The first of those that are made together with the conversion and were not selected; its own
// index if there is none.
std::size_t findUnselected(std::size_t conversion, const std::vector<std::size_t>& needs,
                           const std::vector<Wish>& wishes) {
  for (std::size_t each = needs[conversion]; each != conversion; each = needs[each]) {
    if (isUnselected(wishes[each])) return each;
  }
  return conversion;
}

}  // namespace

std::vector<Wish> findWishes(const std::vector<Conversion>& conversions,
                             const std::vector<std::size_t>& needs, const ChoosingClass& owner,
                             const ConversionSelection& selection, RiskType highestRisk) {
  const WishFinder finder(owner, selection, highestRisk);
  std::vector<Wish> wishes;
  for (const Conversion& each : conversions) wishes.push_back(finder.wishFor(each.id));
  for (std::size_t i = 0; i < wishes.size(); ++i) {
    if (wishes[i].leftOut) continue;
    const std::size_t missing = findUnselected(i, needs, wishes);
    if (missing == i) continue;
    wishes[i].leftOut = {"soca:NeedsNotSelected",
                         fmt::format("it is only made together with '{}', which was not selected",
                                     conversions[missing].id),
                         {}};
  }
  return wishes;
}

}  // namespace soca
