#include "platform/runtime/Hierarchy.h"

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
    if (names_.size() < mostSearched) {
      if (std::ranges::find(names_, name) != names_.end()) return false;
      names_.push_back(name);
      return true;
    }
    if (hashed_.empty()) hashed_.insert(names_.begin(), names_.end());
    return hashed_.insert(name).second;
  }

 private:
  static constexpr std::size_t mostSearched = 24;

  std::vector<std::string_view> names_;
  std::unordered_set<std::string_view> hashed_;
};

}  // namespace

Hierarchy::Hierarchy(std::shared_ptr<const ClassDescription> first) {
  if (first == nullptr) return;
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
