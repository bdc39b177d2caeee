#include "reports/explanations/ProgramMessages.h"

#include <cstddef>

#include "reports/explanations/MessageExplanations.h"

namespace soca::cli {

std::string programMessage(std::string_view id, std::initializer_list<std::string_view> arguments) {
  const auto* explanation = fl::i18n::findMessageExplanation(id);
  if (explanation == nullptr) return std::string(id);
  std::string text;
  const std::string_view pattern = explanation->text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    // A placeholder is one digit in braces.
    const bool isPlaceholder = pattern[i] == '{' && i + 2 < pattern.size() && pattern[i + 2] == '}';
    const auto number = isPlaceholder ? static_cast<std::size_t>(pattern[i + 1] - '0') : 0;
    if (!isPlaceholder || number >= arguments.size()) {
      text += pattern[i];
      continue;
    }
    text += arguments.begin()[number];
    i += 2;
  }
  return text;
}

}  // namespace soca::cli
