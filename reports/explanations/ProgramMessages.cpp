#include "reports/explanations/ProgramMessages.h"

#include <cstddef>

#include "reports/explanations/MessageExplanations.h"

namespace soca {

std::string fillPlaceholders(std::string_view pattern, const std::vector<std::string>& arguments) {
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    // A placeholder is one digit in braces.
    const bool isPlaceholder = pattern[i] == '{' && i + 2 < pattern.size() && pattern[i + 2] == '}';
    const auto number = isPlaceholder ? static_cast<std::size_t>(pattern[i + 1] - '0') : 0;
    if (!isPlaceholder || number >= arguments.size()) {
      text += pattern[i];
      continue;
    }
    text += arguments[number];
    i += 2;
  }
  return text;
}

std::string programMessage(std::string_view id, const std::vector<std::string>& arguments) {
  const auto* explanation = findMessageExplanation(id);
  return explanation == nullptr ? std::string(id) : fillPlaceholders(explanation->text, arguments);
}

}  // namespace soca
