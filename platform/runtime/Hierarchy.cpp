#include "platform/runtime/Hierarchy.h"

#include <deque>
#include <string>
#include <unordered_set>

namespace sotarn {

bool anyInHierarchy(const std::shared_ptr<const ClassDescription>& first,
                    const std::function<bool(const ClassDescription&)>& visit) {
  if (first == nullptr) return false;
  if (visit(*first)) return true;
  std::unordered_set<std::string> met{first->name};
  std::deque<std::string> pending;
  const auto enqueue = [&](const ClassDescription& description) {
    for (const std::string& superClass : description.superClasses) {
      if (met.insert(superClass).second) pending.push_back(superClass);
    }
  };
  enqueue(*first);
  for (; !pending.empty(); pending.pop_front()) {
    const auto description = describeClass(pending.front());
    if (description == nullptr) continue;
    if (visit(*description)) return true;
    enqueue(*description);
  }
  return false;
}

}  // namespace sotarn
