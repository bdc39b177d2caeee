// The rule families as users know them.
#pragma once

#include <array>
#include <string_view>

namespace soca::cli {

// In the order of RuleFamilyType.
constexpr std::array<std::string_view, 3> familyNames = {"attributes", "mixins", "impl"};

}  // namespace soca::cli
