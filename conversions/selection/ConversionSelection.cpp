#include "conversions/selection/ConversionSelection.h"

#include <fnmatch.h>

#include <algorithm>

namespace soca {

bool matchesPattern(const std::string& pattern, const std::string& id) {
  return ::fnmatch(pattern.c_str(), id.c_str(), 0) == 0;
}

bool isPlainId(const std::string& pattern) {
  return pattern.find_first_of("*?[\\") == std::string::npos;
}

bool ConversionSelection::isChosenByPatterns(const std::string& id) const {
  const auto matches = [&](const std::string& pattern) { return matchesPattern(pattern, id); };
  return (only.empty() || std::ranges::any_of(only, matches)) &&
         std::ranges::none_of(skip, matches);
}

}  // namespace soca
