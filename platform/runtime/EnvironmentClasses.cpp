#include "platform/runtime/EnvironmentClasses.h"

#include <algorithm>
#include <array>

namespace sotarn {

namespace {

struct EnvironmentClass {
  std::string_view name;
  // Empty for none.
  std::string_view superClass;
};

constexpr std::array<EnvironmentClass, 10> environmentClasses{{
    {"velum.System", "velum.system.coder.System"},
    {"velum.system.coder.System", "velum.system.SystemImpl"},
    {"velum.system.SystemImpl", "handle"},
    {"handle", ""},
    {"velum.system.mixin.Propagates", "velum.system.SystemImpl"},
    {"velum.system.mixin.SampleTime", "velum.system.SystemImpl"},
    {"velum.system.mixin.Nondirect", "velum.system.SystemImpl"},
    {"velum.system.mixin.CustomIcon", "velum.system.SystemImpl"},
    {"velum.system.mixin.internal.CustomIcon", "velum.system.SystemImpl"},
    {"velum.system.mixin.FiniteSource", "handle"},
}};

// Never destroyed, so the pointer needs no reference count, for which threads would contend.
std::shared_ptr<const ClassDescription> describe(const EnvironmentClass& environmentClass) {
  auto* const description = new ClassDescription();
  description->name = environmentClass.name;
  description->origin = ClassOriginType::environment;
  if (!environmentClass.superClass.empty()) {
    description->superClasses.emplace_back(environmentClass.superClass);
  }
  return {std::shared_ptr<const ClassDescription>(), description};
}

std::size_t indexOf(std::string_view name) {
  const auto found = std::find_if(environmentClasses.begin(), environmentClasses.end(),
                                  [&](const auto& entry) { return entry.name == name; });
  return static_cast<std::size_t>(found - environmentClasses.begin());
}

}  // namespace

bool isEnvironmentClass(std::string_view name) { return indexOf(name) < environmentClasses.size(); }

std::shared_ptr<const ClassDescription> describeEnvironmentClass(std::string_view name) {
  static const auto descriptions = [] {
    std::array<std::shared_ptr<const ClassDescription>, environmentClasses.size()> made;
    std::transform(environmentClasses.begin(), environmentClasses.end(), made.begin(), describe);
    return made;
  }();
  const std::size_t index = indexOf(name);
  return index < descriptions.size() ? descriptions[index] : nullptr;
}

}  // namespace sotarn
