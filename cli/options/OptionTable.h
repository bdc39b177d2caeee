// The commands and their options, as data from which the parser and the help are made.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
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

enum class OptionType {
  path,
  rules,
  superclasses,
  write,
  check,
  allowDirty,
  noIgnore,
  list,
  stats,
  format,
  edits,
  stdinPath,
  classTable,
  jobs,
  quiet,
  verbose,
  color,
  help,
};

// One of the words that an option accepts, and its value as a number.
struct OptionWord {
  template <class Value>
  constexpr OptionWord(std::string_view word, Value meaning)
      : text(word), value(static_cast<std::uint64_t>(meaning)) {}

  std::string_view text;
  std::uint64_t value;
};

struct OptionRow {
  OptionType type;
  // `-p,--path` or `--write`.
  std::string_view flags;
  // The name of the option's value; empty for a switch. DIR is a folder, FILE and PATH are files,
  // and LIST is a list separated by commas.
  std::string_view value;
  // The commands that have it, as a sum of `bitOf`.
  unsigned commands;
  std::string_view text;
  // All possible words of the value; empty if the value is not a word.
  std::span<const OptionWord> words = {};
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
const OptionRow& optionRow(OptionType type);

}  // namespace soca::cli
