#include "platform/runtime/Hierarchy.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace sotarn {
namespace {

// The names that were met. Few are looked through, many are hashed.
class NameSet {
 public:
  // Whether the name is a new one. It must outlive the set.
  bool insert(std::string_view name) {
    auto* const end = names_.begin() + count_;
    if (count_ < names_.size()) {
      if (std::find(names_.begin(), end, name) != end) return false;
      names_[count_++] = name;
      return true;
    }
    if (hashed_.empty()) hashed_.insert(names_.begin(), end);
    return hashed_.insert(name).second;
  }

 private:
  std::array<std::string_view, 24> names_;
  std::size_t count_ = 0;
  std::unordered_set<std::string_view> hashed_;
};

}  // namespace

Hierarchy::Hierarchy(std::shared_ptr<const ClassDescription> first) {
  if (first == nullptr) return;
  constexpr std::size_t usualSize = 8;
  classes_.reserve(usualSize);
  NameSet met;
  met.insert(first->name);
  classes_.push_back(std::move(first));
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    const std::vector<std::string>& superClasses = classes_[i]->superClasses;
    for (const std::string& name : superClasses) {
      if (!met.insert(name)) continue;
      if (auto description = describeClass(name)) classes_.push_back(std::move(description));
    }
  }
}

}  // namespace sotarn
