#include "conversions/passes/PassFacts.h"

#include "platform/runtime/ClassDescription.h"

namespace soca {

std::vector<std::string> findSuperClassesWithFile(const std::string& className) {
  std::vector<std::string> names;
  const auto description = sotarn::describeClass(className);
  if (description == nullptr) return names;
  for (const std::string& name : description->superClasses) {
    if (sotarn::isEnvironmentClass(name)) continue;
    const auto superClass = sotarn::describeClass(name);
    if (superClass != nullptr && !superClass->sourcePath.empty()) names.push_back(name);
  }
  return names;
}

}  // namespace soca
