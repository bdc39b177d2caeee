#include "cli/manual/CompletionTable.h"

#include <algorithm>

#include "reports/explanations/MessageExplanations.h"

namespace soca::cli {

CompletionType completionOf(const OptionRow& row) {
  if (!row.words.empty()) {
    return row.value == "LIST" ? CompletionType::wordList : CompletionType::words;
  }
  if (row.value == "DIR") return CompletionType::folder;
  if (row.value == "FILE" || row.value == "PATH") return CompletionType::file;
  return CompletionType::nothing;
}

CompletionType completionOf(const CommandRow& row) {
  const auto takes = [&](std::string_view word) {
    return row.arguments.find(word) != std::string_view::npos;
  };
  if (takes("CLASS"))
    return takes("FILE") ? CompletionType::classOrFile : CompletionType::className;
  if (takes("FILE")) return CompletionType::file;
  return takes("ID") ? CompletionType::id : CompletionType::nothing;
}

std::string joinWords(const OptionRow& row, std::string_view separator) {
  std::string text;
  for (const std::string_view word : row.words) {
    if (!text.empty()) text += separator;
    text += word;
  }
  return text;
}

std::vector<std::string_view> completedIds() {
  std::vector<std::string_view> ids;
  for (const auto& rule : ruleExplanations()) ids.push_back(rule.id);
  for (const auto messages : {messageExplanations(), programExplanations()}) {
    for (const auto& message : messages) {
      constexpr std::string_view program = "soca:";
      std::string_view id = message.id;
      if (id.starts_with(program)) id.remove_prefix(program.size());
      if (id.find(':') == std::string_view::npos) ids.push_back(id);
    }
  }
  return ids;
}

std::vector<std::string_view> commandsOf(const OptionRow& row) {
  std::vector<std::string_view> names;
  for (const CommandRow& command : commandRows()) {
    if (isFor(command.type, row)) names.push_back(command.name);
  }
  return names;
}

}  // namespace soca::cli
