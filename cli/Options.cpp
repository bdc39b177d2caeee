#include "cli/Options.h"

#include <fmt/core.h>
#include <sched.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "cli/OptionTable.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca::cli {
namespace {

constexpr unsigned mostJobs = 1024;

// What the word stands for that the option was given.
std::uint64_t valueOf(std::string_view text, OptionType type, std::string_view what) {
  const std::span<const OptionWord> words = optionRow(type).words;
  const auto word = std::ranges::find(words, text, &OptionWord::text);
  if (word != words.end()) return word->value;
  std::string known;
  for (const OptionWord& row : words) {
    if (!known.empty()) known += ", ";
    known += row.text;
  }
  throw UsageError(fmt::format("unknown {} '{}'; known are: {}", what, text, known));
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

// The options as the parser sees them, before their values are read.
struct RawOptions {
  std::string rules, jobs, color, format;
  bool help = false;
};

void addOption(CLI::App& app, const OptionRow& row, Options& options, RawOptions& raw) {
  const std::string flags(row.flags);
  switch (row.type) {
    case OptionType::path:
      // One folder for each `-p`: what follows it is an argument of the command.
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
    case OptionType::format:
      app.add_option(flags, raw.format)->take_last();
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
  if (isGiven("--class-table") && options.classTable.empty()) {
    throw UsageError("--class-table takes the name of a file");
  }
}

void checkOptions(const CommandRow& command, const Options& options) {
  if (options.write && options.check) {
    throw UsageError("--write and --check can't be had together: --check changes nothing");
  }
  if (options.quiet && options.verbose) throw UsageError("--quiet and --verbose contradict");
  if (command.needsArguments && options.arguments.empty()) {
    throw UsageError(fmt::format("'{}' is missing; write: soca {} [options] {}",
                                 command.arguments.substr(0, command.arguments.find(' ')),
                                 command.name, command.arguments));
  }
  if (command.type == CommandType::explain && options.arguments.size() > 1) {
    throw UsageError("'explain' takes one id at a time");
  }
}

// The parser's messages begin or end with the option that they are about.
std::string firstWord(std::string_view message) {
  return std::string(message.substr(0, message.find_first_of(": ")));
}
std::string lastWord(std::string_view message) {
  return std::string(message.substr(message.rfind(' ') + 1));
}

void parseCommandLine(const CommandRow& command, const std::vector<std::string>& arguments,
                      Options& options) {
  CLI::App app;
  app.set_help_flag();
  RawOptions raw;
  for (const OptionRow& row : optionRows()) {
    if ((row.commands & bitOf(command.type)) != 0) addOption(app, row, options, raw);
  }
  app.add_option("arguments", options.arguments)->type_name("argument");
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
  } catch (const CLI::ExtrasError& error) {
    throw UsageError(fmt::format("'{}' has no option '{}'", command.name, lastWord(error.what())));
  } catch (const CLI::ArgumentMismatch& error) {
    throw UsageError(fmt::format("{} needs a value", firstWord(error.what())));
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  if (raw.help) {
    options.helpSubject = command.type;
    options.command = CommandType::help;
    return;
  }
  readValues(app, raw, options);
  checkOptions(command, options);
}

// Names of files and classes have to be text.
void checkEncoding(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    const fl::DecodedText decoded = fl::decodeFileText(argument);
    if (decoded.encoding == fl::EncodingType::utf8) continue;
    throw UsageError(
        fmt::format("the argument '{}' is not UTF-8", fl::i18n::to_string(decoded.text)));
  }
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
  checkEncoding(arguments);
  Options options;
  if (arguments.empty()) throw UsageError("a command is missing");
  const std::string& first = arguments.front();
  if (first == "--version") {
    options.command = CommandType::version;
    return options;
  }
  if (first == "--help" || first == "-h") return options;
  const CommandRow* command = findCommand(first);
  if (command == nullptr && first.starts_with('-')) {
    throw UsageError(fmt::format("the command comes first, and not '{}'", first));
  }
  if (command == nullptr) throw UsageError(fmt::format("unknown command '{}'", first));
  options.command = command->type;
  parseCommandLine(*command, arguments, options);
  return options;
}

}  // namespace soca::cli
