// The class runtime's ids of classes.
#pragma once

#include <string>

namespace tarn {

// The id of a class: its dotted name in UTF-8. The null id belongs to no class.
struct InternedId {
  std::string name;

  friend bool operator==(const InternedId&, const InternedId&) = default;
};

namespace internal {

inline const InternedId nullValue{};

inline InternedId makeInterned(const std::string& name) { return {name}; }

}  // namespace internal
}  // namespace tarn
