// What a person chose of the conversions of a run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conversions/selection/ChosenIds.h"

namespace soca {

// Whether the id of a conversion matches the pattern, as the names of files match those of a shell:
// `*` is any text, `?` a byte, `[ab]` one of several. A `*` matches `.`, `/`, `#` and `:` too.
bool matchesPattern(const std::string& pattern, const std::string& id);
// Whether the pattern is a plain id, which matches nothing but itself.
bool isPlainId(const std::string& pattern);

// Each of the three narrows the choice.
struct ConversionSelection {
  // The patterns of which one must match the id; empty for all ids.
  std::vector<std::string> only;
  // Those of which none may match.
  std::vector<std::string> skip;
  std::optional<ChosenIds> ids;

  bool isEmpty() const { return only.empty() && skip.empty() && !ids; }
  bool isChosenByPatterns(const std::string& id) const;
};

}  // namespace soca
