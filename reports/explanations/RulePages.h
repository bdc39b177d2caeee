// The pages of docs/rules/: one for each rule family, one for the failures, and an index.
#pragma once

#include <string>
#include <vector>

namespace soca {

struct RulePage {
  // In docs/rules/, such as "impl.md".
  std::string fileName;
  // Markdown, UTF-8, with a line end at its end.
  std::string text;
};

// The index first. All texts about messages and rules come from the explanations. Throws
// std::runtime_error if one of these has an unpaired backtick.
std::vector<RulePage> makeRulePages();

}  // namespace soca
