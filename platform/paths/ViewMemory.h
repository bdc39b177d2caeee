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
// memory is bounded, and frequent names mostly stay. Belongs to one thread, and is emptied when
// another view is in force.
template <class Value, std::size_t size>
class ViewMemory {
 public:
  // The value of the name; null if it is not in the cache, or if no view is in force.
  const Value* find(std::string_view name) {
    if (!isUsable()) return nullptr;
    const Place& place = placeOf(name);
    return place.name == name ? &place.value : nullptr;
  }

  // Stores the value if a view is in force. The name must not be empty.
  void keep(std::string_view name, Value value) {
    if (!isUsable()) return;
    Place& place = placeOf(name);
    place.name = name;
    place.value = std::move(value);
  }

  void clear() { places_.reset(); }

 private:
  // An empty name marks a free place.
  struct Place {
    std::string name;
    Value value{};
  };

  bool isUsable() {
    const std::uint64_t view = FileView::current();
    if (view == 0) return false;
    if (view != view_ || places_ == nullptr) {
      places_ = std::make_unique<std::array<Place, size>>();
      view_ = view;
    }
    return true;
  }

  Place& placeOf(std::string_view name) {
    return (*places_)[std::hash<std::string_view>()(name) % size];
  }

  std::uint64_t view_ = 0;
  std::unique_ptr<std::array<Place, size>> places_;
};

}  // namespace fl::filesystem
