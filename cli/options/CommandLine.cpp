#include "cli/options/CommandLine.h"

#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

#include "cli/options/OptionTable.h"
#include "cli/options/OptionValues.h"
#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca::cli {
namespace {

template <class Rows, class Projection>
std::vector<std::string_view> namesIn(const Rows& rows, Projection nameOf) {
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), nameOf);
  return names;
}

// Declares the option of a row to the parser. A value with a reader is stored in `rawValue`.
class OptionAdder {
 public:
  OptionAdder(CLI::App* app, std::string flags, Options* options, std::string* rawValue)
      : app_(app), flags_(std::move(flags)), options_(options), rawValue_(rawValue) {}

  // A switch has no value.
  void operator()(bool Options::* member) const {
    app_->add_flag(flags_, options_->*member)->disable_flag_override();
  }
  void operator()(std::string Options::* member) const {
    app_->add_option(flags_, options_->*member)->take_last();
  }
  // One value for each occurrence: the word after it is an argument of the command.
  void operator()(std::vector<std::string> Options::* member) const {
    app_->add_option(flags_, options_->*member)->allow_extra_args(false)->type_name("DIR");
  }
  void operator()(OptionReader) const { app_->add_option(flags_, *rawValue_)->take_last(); }

 private:
  CLI::App* app_;
  std::string flags_;
  Options* options_;
  std::string* rawValue_;
};

// Passes the values that were given to their readers.
void readValues(const CLI::App& app, const std::vector<std::string>& rawValues, Options& options) {
  for (std::size_t i = 0; i < rawValues.size(); ++i) {
    const OptionRow& row = optionRows()[i];
    const auto* reader = std::get_if<OptionReader>(&row.target);
    if (reader == nullptr) continue;
    const auto* option = app.get_option_no_throw(std::string(namesOf(row).back()));
    if (option != nullptr && option->count() > 0) (*reader)(rawValues[i], options);
  }
}

// Checks the options that are valid with a text from standard input.
void checkStandardInput(const Options& options) {
  const bool isNamed = std::ranges::find(options.arguments, "-") != options.arguments.end();
  if (options.stdinPath.empty()) {
    if (!isNamed) return;
    throw UsageError("'-' is standard input: add --stdin-path PATH to name its class");
  }
  if (!isNamed || options.arguments.size() > 1) {
    throw UsageError("--stdin-path needs '-' as the only argument: --stdin-path PATH -");
  }
  if (options.write) {
    throw UsageError(
        "--stdin-path and --write cannot be combined: the new text goes to standard output");
  }
  if (!options.reportFile.empty()) {
    throw UsageError("--stdin-path and --report cannot be combined: the page is about files");
  }
  if (options.includeSuperclasses) {
    throw UsageError(
        "--stdin-path and --superclasses cannot be combined: only one text is read and printed");
  }
}

// Checks the format of `classes`.
void checkFormat(const Options& options) {
  const ReportFormat& format = *options.format;
  if (format.isForPeople) return;
  if (!options.unresolved) throw UsageError("--format needs --unresolved");
  if (format.takesEdits && format.whyNotWritten.empty()) return;
  throw UsageError(fmt::format("--format {} and --unresolved cannot be combined", format.name));
}

// Checks the options with which a list is printed, and not the update.
void checkList(const Options& options) {
  const auto refuse = [](std::string_view option, std::string_view reason) {
    throw UsageError(fmt::format("{} and --list cannot be combined: {}", option, reason));
  };
  if (options.write) refuse("--write", "--list changes nothing");
  if (options.check) refuse("--check", "it prints the names of classes");
  if (options.summary) refuse("--summary", "it prints no conversions; add -q instead");
  if (options.edits) refuse("--edits", "without --list they have the ids of their conversions");
  if (options.format->list == nullptr) {
    refuse(fmt::format("--format {}", options.format->name), "the log lists all conversions");
  }
}

// A page replaces the file that is at its path.
void checkReportFile(const Options& options) {
  for (const std::string* read : {&options.selectionFile, &options.classTable}) {
    if (options.reportFile.empty() || options.reportFile != *read) continue;
    throw UsageError(fmt::format("--report would replace a file that is read: '{}'", *read));
  }
}

// Checks the options for what the program decides, and for the numbers.
void checkDecisions(const Options& options) {
  if (!options.selectionFile.empty() && !options.rules.isEverything()) {
    throw UsageError("--selection and --rules cannot be combined: the file names the conversions");
  }
  if (std::ranges::count(options.only, "") + std::ranges::count(options.skip, "") > 0) {
    throw UsageError("--only and --skip take patterns, and not an empty text");
  }
  if (!options.asService) return;
  const auto refuse = [](std::string_view option, std::string_view reason) {
    throw UsageError(fmt::format("{} and --as-service cannot be combined: {}", option, reason));
  };
  if (options.risk) refuse("--risk", "the service makes all conversions of a class");
  if (!options.rules.hasWholeFamilies()) {
    refuse("--rules with a kind", "the service takes families; name these alone");
  }
  if (options.tidy) refuse("--tidy", "the edits are those of the service");
  if (options.noLayout) refuse("--no-layout", "the service never lays lines apart");
  if (options.hasSelection()) {
    refuse(!options.only.empty()   ? "--only"
           : !options.skip.empty() ? "--skip"
                                   : "--selection",
           "the service makes all conversions of a class");
  }
  if (options.list) refuse("--list", "the service decides nothing about single conversions");
  constexpr const char* whyNoPage = "the service decides nothing about single conversions";
  if (!options.format->isForService) {
    refuse(fmt::format("--format {}", options.format->name), whyNoPage);
  }
  if (!options.reportFile.empty()) refuse("--report", whyNoPage);
  if (options.summary) refuse("--summary", "add -q instead");
  if (options.groupBy) refuse("--group-by", "the service leaves no conversion out");
}

void checkNumbers(const Options& options) {
  if (options.summary && !options.format->isForPeople) {
    throw UsageError(fmt::format(
        "--summary and --format {} cannot be combined: without --summary the numbers are on "
        "standard error, and the data on standard output",
        options.format->name));
  }
  if (options.summary && options.verbose) {
    throw UsageError("--summary and --verbose cannot be combined: --summary prints no classes");
  }
  if (options.groupBy && options.quiet && !options.summary) {
    throw UsageError("--quiet prints no numbers to group: add --summary, or omit --group-by");
  }
  if (!options.stdinPath.empty() && (options.summary || options.groupBy)) {
    throw UsageError(fmt::format("{} and --stdin-path cannot be combined: one text has no summary",
                                 options.summary ? "--summary" : "--group-by"));
  }
}

void checkOptions(const CommandRow& command, const Options& options) {
  const bool isUpdate = command.type == CommandType::update;
  if (isUpdate && options.list) checkList(options);
  if (options.write && options.check) {
    throw UsageError("--write and --check cannot be combined: --check changes nothing");
  }
  if (!options.verify.empty() && !options.write) {
    throw UsageError("--verify needs --write: the command verifies the files that were written");
  }
  if (options.edits && !options.format->takesEdits) {
    throw UsageError("--edits needs a format for programs: add --format json");
  }
  if (options.write && !options.format->whyNotWritten.empty()) {
    throw UsageError(fmt::format("--format {} and --write cannot be combined: {}",
                                 options.format->name, options.format->whyNotWritten));
  }
  if (options.edits && options.write) {
    throw UsageError("--edits and --write cannot be combined: written files need no edits");
  }
  if (isUpdate) {
    checkStandardInput(options);
    checkReportFile(options);
    checkDecisions(options);
    checkNumbers(options);
  }
  if (command.type == CommandType::classes) checkFormat(options);
  if (options.quiet && options.verbose)
    throw UsageError("--quiet and --verbose cannot be combined");
  if (command.needsArguments && options.arguments.empty() && !options.unresolved) {
    throw UsageError(fmt::format("'{}' is missing; write: soca {} [options] {}",
                                 command.arguments.substr(0, command.arguments.find(' ')),
                                 command.name, command.arguments));
  }
  if (command.type == CommandType::explain && options.arguments.size() > 1) {
    throw UsageError("'explain' takes one id at a time");
  }
  if (isUpdate) return;
  if (options.list && !options.arguments.empty()) {
    throw UsageError("'undo --list' lists all runs, and takes no argument");
  }
  if (options.list && options.dryRun) {
    throw UsageError("--list and --dry-run cannot be combined: --list changes nothing");
  }
  if (options.list && options.forget) throw UsageError("--list and --forget cannot be combined");
  if (options.forget && options.arguments.empty()) {
    throw UsageError("--forget needs the numbers of runs; 'soca undo --list' shows them");
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
  const std::span<const OptionRow> rows = optionRows();
  std::vector<std::string> rawValues(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!isFor(command.type, rows[i])) continue;
    std::visit(OptionAdder(&app, std::string(rows[i].flags), &options, &rawValues[i]),
               rows[i].target);
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
  if (options.help) {
    options.helpSubject = command.type;
    options.command = CommandType::help;
    return;
  }
  options.jobs = numberOfProcessors();
  readValues(app, rawValues, options);
  checkOptions(command, options);
  if (command.type == CommandType::update && options.list) options.format = options.format->list;
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
    color = parseColor(word).value_or(color);
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
