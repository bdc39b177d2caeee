#include "cli/Help.h"

#include <fmt/core.h>

#include "cli/OptionTable.h"

namespace soca::cli {
namespace {

constexpr std::string_view exitCodes =
    "Exit codes: 0 done; 1 --check found something to change; 2 a class failed or was refused,\n"
    "or the command line was wrong; 130 and 143 interrupted.\n";

std::string programHelp() {
  std::string text =
      "Updates System object classes to the current form of the language.\n\nUsage:\n";
  for (const CommandRow& row : commandRows()) {
    text += fmt::format("  soca {:<8} {:<31} {}\n", row.name,
                        fmt::format("[options] {}", row.arguments), row.summary);
  }
  text += "\nExamples:\n";
  for (const CommandRow& row : commandRows()) text += fmt::format("  {}\n", row.example);
  text += "\n'soca COMMAND --help' tells the options of a command, 'soca --version' the version.\n";
  text += exitCodes;
  return text;
}

// `-p, --path DIR`, with room for a short form where there is none.
std::string optionUsage(const OptionRow& row) {
  std::string flags(row.flags);
  const std::size_t comma = flags.find(',');
  if (comma != std::string::npos) {
    flags.insert(comma + 1, " ");
  } else {
    flags.insert(0, "    ");
  }
  return row.value.empty() ? flags : fmt::format("{} {}", flags, row.value);
}

std::string commandHelp(const CommandRow& command) {
  std::string text =
      fmt::format("Usage: soca {} [options] {}\n\n", command.name, command.arguments);
  text += fmt::format("To {}.\n\nOptions:\n", command.summary);
  for (const OptionRow& row : optionRows()) {
    if ((row.commands & bitOf(command.type)) == 0) continue;
    text += fmt::format("  {:<23} {}\n", optionUsage(row), row.text);
  }
  text += fmt::format("\nExample:\n  {}\n", command.example);
  if (command.type == CommandType::update) text += fmt::format("\n{}", exitCodes);
  return text;
}

}  // namespace

std::string helpText(CommandType subject) {
  return subject == CommandType::help ? programHelp() : commandHelp(commandRow(subject));
}

std::string versionText() { return "soca " SOCA_VERSION "\n"; }

}  // namespace soca::cli
