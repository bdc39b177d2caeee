#include "conversions/selection/ChosenIds.h"

#include <fmt/core.h>

#include <algorithm>

namespace soca {

ChosenIds::Text ChosenIds::keep(std::string_view text) {
  const Text kept{static_cast<std::uint32_t>(texts_.size()),
                  static_cast<std::uint32_t>(text.size())};
  texts_ += text;
  return kept;
}

void ChosenIds::add(std::string_view className, std::string_view sha256,
                    const std::vector<ChosenConversion>& chosen) {
  if (chosen.empty()) return;
  classes_.push_back({keep(className), keep(sha256),
                      static_cast<std::uint32_t>(conversions_.size()),
                      static_cast<std::uint32_t>(chosen.size())});
  for (const ChosenConversion& each : chosen) {
    conversions_.push_back({keep(each.name), each.accepted});
  }
  std::sort(conversions_.end() - static_cast<std::ptrdiff_t>(chosen.size()), conversions_.end(),
            [this](const Conversion& left, const Conversion& right) {
              return viewOf(left.name) < viewOf(right.name);
            });
}

void ChosenIds::finish() {
  std::ranges::sort(classes_, {}, [this](const Class& each) { return viewOf(each.name); });
  texts_.shrink_to_fit();
  conversions_.shrink_to_fit();
}

std::optional<std::size_t> ChosenIds::findClass(std::string_view className) const {
  const auto place = std::ranges::lower_bound(
      classes_, className, {}, [this](const Class& each) { return viewOf(each.name); });
  if (place == classes_.end() || viewOf(place->name) != className) return std::nullopt;
  return static_cast<std::size_t>(place - classes_.begin());
}

std::vector<std::string> ChosenIds::idsOf(std::size_t index) const {
  const Class& owner = classes_[index];
  std::vector<std::string> ids;
  for (std::size_t i = 0; i < owner.count; ++i) {
    ids.push_back(
        fmt::format("{}#{}", viewOf(owner.name), viewOf(conversions_[owner.first + i].name)));
  }
  return ids;
}

std::optional<RiskType> ChosenIds::acceptedRisk(std::size_t index, std::string_view id) const {
  const Class& owner = classes_[index];
  const std::string_view name = id.substr(std::size_t{owner.name.size} + 1);
  const auto* first = conversions_.data() + owner.first;
  const auto* last = first + owner.count;
  const auto* place =
      std::lower_bound(first, last, name, [this](const Conversion& each, std::string_view wanted) {
        return viewOf(each.name) < wanted;
      });
  if (place == last || viewOf(place->name) != name) return std::nullopt;
  return place->accepted;
}

}  // namespace soca
