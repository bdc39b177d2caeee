#include "cli/commands/Help.h"

#include <fmt/core.h>

#include <algorithm>

#include "cli/options/OptionTable.h"
#include "reports/text/TextLayout.h"

namespace soca::cli {
namespace {

// "Exit codes: 0 done; 130 interrupted." with the codes for which `isWanted` is true.
template <class Predicate>
std::string exitCodeLines(const Predicate& isWanted) {
  std::string text = "Exit codes:";
  for (const ExitCodeRow& row : exitCodeRows()) {
    if (isWanted(row)) text += fmt::format(" {} {};", static_cast<int>(row.code), row.text);
  }
  text.back() = '.';
  return wrap(text, "");
}

std::string programHelp() {
  std::string text =
      "Updates System object classes to the current form of the language.\n\n"
      "Usage: soca COMMAND [options] [arguments]\n\n";
  for (const CommandRow& row : commandRows()) {
    text += fmt::format("  {:<8} {}\n", row.name, row.summary);
  }
  text += "\nExamples:\n";
  for (const CommandRow& row : commandRows()) text += fmt::format("  {}\n", row.example);
  text += "\n'soca COMMAND --help' lists a command's options, 'soca --version' the version.\n";
  return text + exitCodeLines([](const ExitCodeRow&) { return true; });
}

// `-p, --path DIR`, with a gap in place of a missing short form.
std::string optionUsage(const OptionRow& row) {
  const auto names = namesOf(row);
  std::string flags = names.size() > 1 ? fmt::format("{}, {}", names[0], names[1])
                                       : fmt::format("    {}", names[0]);
  return row.value.empty() ? flags : fmt::format("{} {}", flags, row.value);
}

std::string optionLines(const CommandRow& command) {
  std::size_t width = 0;
  for (const OptionRow& row : optionRows()) {
    if (isFor(command.type, row)) width = std::max(width, optionUsage(row).size());
  }
  std::string text;
  for (const OptionRow& row : optionRows()) {
    if (!isFor(command.type, row)) continue;
    text += wrap(row.text, std::string(width + 4, ' '),
                 fmt::format("  {:<{}}  ", optionUsage(row), width));
  }
  return text;
}

std::string commandHelp(const CommandRow& command) {
  return fmt::format(
      "Usage: soca {} [options] {}\nTo {}.\n\n{}\nExample: {}\n{}", command.name, command.arguments,
      command.summary, optionLines(command), command.example,
      exitCodeLines([&](const ExitCodeRow& row) { return isFor(command.type, row); }));
}

}  // namespace

std::string helpText(CommandType subject) {
  return subject == CommandType::help ? programHelp() : commandHelp(commandRow(subject));
}

}  // namespace soca::cli
