#include "cli/options/Options.h"

#include <fmt/ranges.h>
#include <sched.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <iterator>

#include "cli/options/OptionTable.h"
#include "files/targets/NearestName.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca::cli {
namespace {

constexpr unsigned mostJobs = 1024;

template <class Rows, class Projection>
std::vector<std::string_view> namesIn(const Rows& rows, Projection nameOf) {
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), nameOf);
  return names;
}

// The value of the word that was given for the option.
std::uint64_t valueOf(std::string_view text, OptionType type, std::string_view what) {
  const std::span<const OptionWord> words = optionRow(type).words;
  const auto word = std::ranges::find(words, text, &OptionWord::text);
  if (word != words.end()) return word->value;
  throw UsageError(fmt::format("unknown {} '{}'; known are: {}{}", what, text,
                               fmt::join(namesIn(words, &OptionWord::text), ", "),
                               didYouMean(text, words, &OptionWord::text)));
}

UpdateMask parseRules(std::string_view list) {
  UpdateMask mask = 0;
  while (true) {
    const std::size_t comma = list.find(',');
    mask |= valueOf(list.substr(0, comma), OptionType::rules, "rule");
    if (comma == std::string_view::npos) return mask;
    list.remove_prefix(comma + 1);
  }
}

unsigned parseJobs(const std::string& text) {
  unsigned jobs = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), jobs);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  if (!isNumber || jobs == 0 || jobs > mostJobs) {
    throw UsageError(
        fmt::format("--jobs takes a number from 1 to {}, and not '{}'", mostJobs, text));
  }
  return jobs;
}

unsigned numberOfProcessors() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  if (sched_getaffinity(0, sizeof(processors), &processors) != 0) return 1;
  return static_cast<unsigned>(std::max(1, CPU_COUNT(&processors)));
}

// The options as parsed, before their values are converted.
struct RawOptions {
  std::string rules, jobs, color, format;
  bool help = false;
};

void addOption(CLI::App& app, const OptionRow& row, Options& options, RawOptions& raw) {
  const std::string flags(row.flags);
  switch (row.type) {
    case OptionType::path:
      // One folder for each `-p`: the word after it is an argument of the command.
      app.add_option(flags, options.roots)->allow_extra_args(false)->type_name("DIR");
      return;
    case OptionType::rules:
      app.add_option(flags, raw.rules)->take_last();
      return;
    case OptionType::superclasses:
      app.add_flag(flags, options.includeSuperclasses);
      return;
    case OptionType::write:
      app.add_flag(flags, options.write);
      return;
    case OptionType::check:
      app.add_flag(flags, options.check);
      return;
    case OptionType::allowDirty:
      app.add_flag(flags, options.allowDirty);
      return;
    case OptionType::stats:
      app.add_flag(flags, options.stats);
      return;
    case OptionType::noIgnore:
      app.add_flag(flags, options.noIgnore);
      return;
    case OptionType::list:
      app.add_flag(flags, options.list);
      return;
    case OptionType::format:
      app.add_option(flags, raw.format)->take_last();
      return;
    case OptionType::edits:
      app.add_flag(flags, options.edits);
      return;
    case OptionType::stdinPath:
      app.add_option(flags, options.stdinPath)->take_last();
      return;
    case OptionType::classTable:
      app.add_option(flags, options.classTable)->take_last();
      return;
    case OptionType::jobs:
      app.add_option(flags, raw.jobs)->take_last();
      return;
    case OptionType::quiet:
      app.add_flag(flags, options.quiet);
      return;
    case OptionType::verbose:
      app.add_flag(flags, options.verbose);
      return;
    case OptionType::color:
      app.add_option(flags, raw.color)->take_last();
      return;
    case OptionType::help:
      app.add_flag(flags, raw.help);
      return;
  }
}

void readValues(const CLI::App& app, const RawOptions& raw, Options& options) {
  const auto isGiven = [&](const char* name) {
    const CLI::Option* option = app.get_option_no_throw(name);
    return option != nullptr && option->count() > 0;
  };
  if (isGiven("--rules")) options.rules = parseRules(raw.rules);
  if (isGiven("--color")) {
    options.color =
        static_cast<ColorType>(valueOf(raw.color, OptionType::color, "value of --color"));
  }
  if (isGiven("--format")) {
    options.format = static_cast<FormatType>(valueOf(raw.format, OptionType::format, "format"));
  }
  options.jobs = isGiven("--jobs") ? parseJobs(raw.jobs) : numberOfProcessors();
  if (isGiven("--stdin-path") && options.stdinPath.empty()) {
    throw UsageError("--stdin-path takes the path of a class file");
  }
  if (isGiven("--class-table") && options.classTable.empty()) {
    throw UsageError("--class-table takes the name of a file");
  }
}

// Checks the options that are valid with a text from standard input.
void checkStandardInput(const Options& options) {
  const bool isNamed = std::ranges::find(options.arguments, "-") != options.arguments.end();
  if (options.stdinPath.empty()) {
    if (!isNamed) return;
    throw UsageError("'-' is standard input: add --stdin-path PATH to say which class comes in");
  }
  if (!isNamed || options.arguments.size() > 1) {
    throw UsageError("--stdin-path goes with '-' as the only argument: --stdin-path PATH -");
  }
  if (options.write) {
    throw UsageError(
        "--stdin-path and --write can't be had together: the new text goes to standard output");
  }
  if (options.includeSuperclasses) {
    throw UsageError(
        "--stdin-path and --superclasses can't be had together: one text comes in and goes out");
  }
}

void checkOptions(const CommandRow& command, const Options& options) {
  if (options.write && options.check) {
    throw UsageError("--write and --check can't be had together: --check changes nothing");
  }
  if (options.edits && options.format == FormatType::text) {
    throw UsageError("--edits belongs to the data for programs: add --format json");
  }
  if (options.write && options.format == FormatType::sarif) {
    throw UsageError(
        "--format sarif and --write can't be had together: it tells places in the files as they "
        "stand; run it first, and then --write");
  }
  if (options.edits && options.write) {
    throw UsageError("--edits and --write can't be had together: written files need no edits");
  }
  if (command.type == CommandType::update) checkStandardInput(options);
  if (options.quiet && options.verbose) throw UsageError("--quiet and --verbose contradict");
  if (command.needsArguments && options.arguments.empty()) {
    throw UsageError(fmt::format("'{}' is missing; write: soca {} [options] {}",
                                 command.arguments.substr(0, command.arguments.find(' ')),
                                 command.name, command.arguments));
  }
  if (command.type == CommandType::explain && options.arguments.size() > 1) {
    throw UsageError("'explain' takes one id at a time");
  }
  if (command.type == CommandType::undo && options.arguments.size() > (options.list ? 0 : 1)) {
    throw UsageError(options.list ? "'undo --list' lists all runs, and takes no argument"
                                  : "'undo' takes one run at a time");
  }
}

// The option has no value, or an invalid one. The parser's message begins with its name, which may
// lack the dashes.
UsageError wrongValue(std::string_view message) {
  const auto withoutDashes = [](std::string_view name) {
    return name.substr(std::min(name.find_first_not_of('-'), name.size()));
  };
  const auto word = withoutDashes(message.substr(0, message.find_first_of(": ")));
  for (const OptionRow& row : optionRows()) {
    const std::string_view name = namesOf(row).back();
    if (withoutDashes(name) != word) continue;
    return UsageError(fmt::format("{} {} value", name, row.value.empty() ? "takes no" : "needs a"));
  }
  return UsageError(std::string(message));
}

// The error for `given`, which is no option of the command.
UsageError unknownOption(const CommandRow& command, std::string_view given) {
  const std::string_view name = given.substr(0, given.find('=', 2));
  std::vector<std::string_view> names;
  std::vector<std::string_view> owners;
  for (const OptionRow& row : optionRows()) {
    const auto rowNames = namesOf(row);
    if (isFor(command.type, row)) names.insert(names.end(), rowNames.begin(), rowNames.end());
    if (std::ranges::find(rowNames, name) == rowNames.end()) continue;
    for (const CommandRow& owner : commandRows()) {
      if (isFor(owner.type, row)) owners.push_back(owner.name);
    }
  }
  if (!owners.empty()) {
    return UsageError(fmt::format("'{}' has no option '{}'; it is one of '{}'", command.name, name,
                                  fmt::join(owners, "', '")));
  }
  return UsageError(fmt::format("'{}' has no option '{}'{}", command.name, name,
                                didYouMean(name, names, std::identity())));
}

// The error for `given`, which is no command.
UsageError unknownCommand(std::string_view given) {
  if (given.starts_with('-')) {
    const std::array<std::string_view, 2> alone = {"--help", "--version"};
    return UsageError(fmt::format("the command comes first, and not '{}'{}", given,
                                  didYouMean(given, alone, std::identity())));
  }
  auto names = namesIn(commandRows(), &CommandRow::name);
  const std::string known = fmt::format("{}", fmt::join(names, ", "));
  names.insert(names.end(), {"--help", "--version"});
  return UsageError(fmt::format("unknown command '{}'; known are: {}{}", given, known,
                                didYouMean(given, names, std::identity())));
}

void parseCommandLine(const CommandRow& command, const std::vector<std::string>& arguments,
                      Options& options) {
  CLI::App app;
  app.set_help_flag();
  app.allow_extras();
  RawOptions raw;
  for (const OptionRow& row : optionRows()) {
    if (!isFor(command.type, row)) continue;
    addOption(app, row, options, raw);
    // A switch has no value.
    if (row.value.empty()) {
      app.get_option(std::string(namesOf(row).back()))->disable_flag_override();
    }
  }
  app.add_option("arguments", options.arguments)->type_name("argument");
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
  } catch (const CLI::ArgumentMismatch& error) {
    throw wrongValue(error.what());
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  for (const std::string& extra : app.remaining()) {
    if (extra != "--") throw unknownOption(command, extra);
  }
  if (raw.help) {
    options.helpSubject = command.type;
    options.command = CommandType::help;
    return;
  }
  readValues(app, raw, options);
  checkOptions(command, options);
}

// Names of files and classes must be UTF-8.
void checkEncoding(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    const fl::DecodedText decoded = fl::decodeFileText(argument);
    if (decoded.encoding == fl::EncodingType::utf8) continue;
    throw UsageError(
        fmt::format("the argument '{}' is not UTF-8", fl::i18n::to_string(decoded.text)));
  }
}

}  // namespace

ColorType findColor(const std::vector<std::string>& arguments) {
  constexpr std::string_view flag = "--color";
  auto color = ColorType::automatic;
  for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
    std::string_view word = arguments[i];
    if (!word.starts_with(flag)) continue;
    word.remove_prefix(flag.size());
    if (word.empty() && i + 1 < arguments.size()) word = arguments[i + 1];
    if (word.starts_with('=')) word.remove_prefix(1);
    for (const OptionWord& row : optionRow(OptionType::color).words) {
      if (row.text == word) color = static_cast<ColorType>(row.value);
    }
  }
  return color;
}

Options parseOptions(const std::vector<std::string>& arguments) {
  checkEncoding(arguments);
  Options options;
  if (arguments.empty()) {
    throw UsageError(fmt::format("a command is missing; known are: {}",
                                 fmt::join(namesIn(commandRows(), &CommandRow::name), ", ")));
  }
  const std::string& first = arguments.front();
  if (first == "--version") {
    options.command = CommandType::version;
    return options;
  }
  if (first == "--help" || first == "-h") return options;
  const CommandRow* command = findCommand(first);
  if (command == nullptr) throw unknownCommand(first);
  options.command = command->type;
  parseCommandLine(*command, arguments, options);
  return options;
}

}  // namespace soca::cli
