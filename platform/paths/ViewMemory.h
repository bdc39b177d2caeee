// A cache for what a thread looks up under a view of the files.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/paths/FileView.h"

namespace fl::filesystem {

// A direct-mapped cache: each name has one place, and evicts another name of the same place. So
// memory is bounded, and frequent names mostly stay. Belongs to one thread. The values of another
// view are not found, and stay until they are evicted: a view may be as short as one call.
template <class Value, std::size_t size>
class ViewMemory {
 public:
  // The value of the name; null if it is not in the cache, or if no view is in force.
  const Value* find(std::string_view name) {
    const std::uint64_t view = FileView::current();
    if (view == 0 || places_ == nullptr) return nullptr;
    const Place& place = placeOf(name);
    return place.view == view && place.name == name ? &place.value : nullptr;
  }

  // Stores the value if a view is in force.
  void keep(std::string_view name, Value value) {
    const std::uint64_t view = FileView::current();
    if (view == 0) return;
    if (places_ == nullptr) places_ = std::make_unique<std::array<Place, size>>();
    Place& place = placeOf(name);
    place.view = view;
    place.name = name;
    place.value = std::move(value);
  }

  void clear() { places_.reset(); }

 private:
  struct Place {
    // 0 marks a free place.
    std::uint64_t view = 0;
    std::string name;
    Value value{};
  };

  Place& placeOf(std::string_view name) {
    return (*places_)[std::hash<std::string_view>()(name) % size];
  }

  std::unique_ptr<std::array<Place, size>> places_;
};

}  // namespace fl::filesystem
