#include "cli/MethodChanges.h"

#include <fmt/core.h>

#include "cli/Ancestry.h"

namespace soca::cli {

void MethodChanges::add(const ClassOutcome& outcome) {
  for (const std::string& method : outcome.gainedMethods) {
    gaining_[method].push_back(outcome.className);
  }
  for (const std::string& method : outcome.deletedMethods) {
    deleted_.emplace_back(outcome.className, method);
  }
}

std::vector<std::string> MethodChanges::warnings() const {
  std::vector<std::string> warnings;
  for (const auto& [className, method] : deleted_) {
    const auto gaining = gaining_.find(method);
    if (gaining == gaining_.end()) continue;
    const Ancestry ancestry(className);
    for (const std::string& super : gaining->second) {
      if (super == className || !ancestry.contains(super)) continue;
      warnings.push_back(fmt::format(
          "warning: method '{}' of class '{}' is deleted as redundant, and its superclass '{}' "
          "gains a method of that name in the same run; see whether '{}' has to keep its own",
          method, className, super, className));
    }
  }
  return warnings;
}

}  // namespace soca::cli
