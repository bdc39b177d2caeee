#include "reports/RootText.h"

#include <fmt/core.h>

#include "platform/text/ShellText.h"

namespace soca {

std::string describeSuggestion(const SuggestedRoots& suggestion, const FileNames& names,
                               bool isWrong) {
  std::string holders;
  for (const std::string& holder : suggestion.holders) {
    holders += fmt::format("{}'{}'", holders.empty() ? "" : ", ", names.typed(holder));
  }
  const bool isOne = suggestion.found == 1;
  std::string text =
      fmt::format("{} {} not found {} under {}, which {}", suggestion.found,
                  isOne ? "superclass that was" : "superclasses that were", isOne ? "is" : "are",
                  holders, suggestion.holders.size() == 1 ? "is no root" : "are no roots");
  if (!isWrong) return text;
  std::string options;
  for (const std::string& root : suggestion.roots)
    options += " -p " + fl::makeShellWord(names.typed(root));
  return text + fmt::format("; did you mean `{}`?", options.substr(1));
}

}  // namespace soca
