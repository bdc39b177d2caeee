#include "conversions/MethodChanges.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <string_view>

#include "conversions/superclasses/Ancestry.h"

namespace soca {
namespace {

std::size_t keyOf(std::string_view className, std::string_view method) {
  return std::hash<std::string>()(fmt::format("{} {}", className, method));
}

}  // namespace

void MethodChanges::add(const ClassUpdate& update) {
  for (const std::string& method : update.methods.gained) {
    gained_.push_back(keyOf(update.className, method));
    gainedNames_.insert(method);
  }
  for (const std::string& method : update.methods.deleted) {
    losing_[method].append(update.className).append("\n");
  }
}

std::vector<std::string> MethodChanges::warnings() {
  std::ranges::sort(gained_);
  std::vector<std::string> warnings;
  for (const std::string& method : gainedNames_) {
    std::string_view rest = losing_[method];
    while (!rest.empty()) {
      const std::string className(rest.substr(0, rest.find('\n')));
      rest.remove_prefix(className.size() + 1);
      for (const std::string& super : Ancestry::superClassesOf(className)) {
        if (!std::ranges::binary_search(gained_, keyOf(super, method))) continue;
        warnings.push_back(fmt::format(
            "warning: method '{}' of class '{}' is deleted as redundant, and its superclass '{}' "
            "gains a method of that name in the same run; see whether '{}' has to keep its own",
            method, className, super, className));
      }
    }
  }
  return warnings;
}

}  // namespace soca
