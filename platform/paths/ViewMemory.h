// What a thread found out under a view of the files.
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

// Values by name, in a fixed number of places: a name takes the place of another one that falls on
// the same. So memory stays bounded, and what is asked for often is mostly there. Belongs to one
// thread, and forgets everything when another view is in force.
template <class Value, std::size_t size>
class ViewMemory {
 public:
  // The value under the name; null when it is not known, or when no view is in force.
  const Value* find(std::string_view name) {
    if (!isUsable()) return nullptr;
    const Place& place = placeOf(name);
    return place.name == name ? &place.value : nullptr;
  }

  // Keeps the value if a view is in force. The name is not empty.
  void keep(std::string_view name, Value value) {
    if (!isUsable()) return;
    Place& place = placeOf(name);
    place.name = name;
    place.value = std::move(value);
  }

  void clear() { places_.reset(); }

 private:
  // No name is empty.
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
