// The commands and their options, as data from which the parser and the help are made.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/options/Options.h"
#include "reports/ExitCodes.h"

namespace soca::cli {

struct CommandRow {
  CommandType type;
  std::string_view name;
  // The arguments after the options.
  std::string_view arguments;
  bool needsArguments;
  std::string_view summary;
  std::string_view example;
};

// Reads the value of an option. Throws UsageError for an invalid value.
using OptionReader = void (*)(const std::string& value, Options& options);

// The destination of the value. A list gets one item for each occurrence of the option.
using OptionTarget = std::variant<bool Options::*, std::string Options::*,
                                  std::vector<std::string> Options::*, OptionReader>;

struct OptionRow {
  // `-p,--path` or `--write`.
  std::string_view flags;
  // The name of the option's value; empty for a switch. DIR is a folder, FILE and PATH are files,
  // and of LIST there may be several, separated by commas.
  std::string_view value;
  // The commands that have it, as a sum of `bitOf`.
  unsigned commands;
  // The text of the help, and the additional text of the manual page, which may be empty.
  std::string text;
  std::string details;
  OptionTarget target;
  // All possible words of the value; empty if the value is not a word.
  std::vector<std::string_view> words;
};

struct ExitCodeRow {
  ExitCodeType code;
  // As in OptionRow.
  unsigned commands;
  std::string_view text;
};

constexpr unsigned bitOf(CommandType command) { return 1U << static_cast<unsigned>(command); }

// Whether the row is valid for the command.
template <class Row>
constexpr bool isFor(CommandType command, const Row& row) {
  return (row.commands & bitOf(command)) != 0;
}

// `-p` and `--path`.
std::vector<std::string_view> namesOf(const OptionRow& row);

// In the order of the help.
std::span<const CommandRow> commandRows();
std::span<const OptionRow> optionRows();
std::span<const ExitCodeRow> exitCodeRows();

// The row of the command; null for an unknown name.
const CommandRow* findCommand(std::string_view name);
const CommandRow& commandRow(CommandType type);

}  // namespace soca::cli
