#include "reports/RootText.h"

#include <fmt/core.h>

#include "files/targets/NearestFile.h"
#include "platform/text/ShellText.h"
#include "reports/text/TextLayout.h"

namespace soca {

std::string describeSuggestion(const SuggestedRoots& suggestion, const FileNames& names,
                               bool isWrong) {
  std::string holders;
  for (const std::string& holder : suggestion.holders) {
    holders += fmt::format("{}'{}'", holders.empty() ? "" : ", ", names.typed(holder));
  }
  const bool isOne = suggestion.found == 1;
  std::string text =
      fmt::format("{} {} not found {} under {}, which {}", groupDigits(suggestion.found),
                  isOne ? "superclass that was" : "superclasses that were", isOne ? "is" : "are",
                  holders, suggestion.holders.size() == 1 ? "is no root" : "are no roots");
  if (!isWrong) return text;
  std::string options;
  for (const std::string& root : suggestion.roots)
    options += " -p " + fl::makeShellWord(names.typed(root));
  return text + fmt::format("; did you mean `{}`?", options.substr(1));
}

std::string listFolders(const std::vector<NamedFolder>& named, const FileNames& names) {
  std::string folders;
  for (const NamedFolder& folder : named) {
    if (folder.isOfFile) continue;
    folders += fmt::format("{}'{}'", folders.empty() ? "" : ", ", names.typed(folder.path));
  }
  return folders;
}

std::string describeNoClassFiles(const std::vector<NamedFolder>& named, const FileNames& names) {
  const std::string folders = listFolders(named, names);
  for (const NamedFolder& folder : named) {
    const std::string suggestion = suggestRootBelow(folder.path);
    if (suggestion.empty()) continue;
    return fmt::format("no class file in {} is on a root of the class path{}", folders, suggestion);
  }
  return fmt::format("there is no class file in {}", folders);
}

}  // namespace soca
