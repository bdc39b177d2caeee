#include "cli/options/OptionTable.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "cli/options/OptionValues.h"

namespace soca::cli {
namespace {

constexpr auto commands = std::to_array<CommandRow>({
    {CommandType::update, "update", "[CLASS|FILE|DIR ...]", false,
     "print what would change, or with --write change it", "soca update -p src control.Pid"},
    {CommandType::actions, "actions", "CLASS ...", true, "print the edits of an update as a report",
     "soca actions -p src control.Pid"},
    {CommandType::classes, "classes", "CLASS ...", true, "print the facts about classes",
     "soca classes -p src control.Pid"},
    {CommandType::check, "check", "FILE ...", true, "print the syntax errors of class files",
     "soca check src/control/Pid.vlm"},
    {CommandType::explain, "explain", "[ID]", false,
     "describe what a rule converts or a message means", "soca explain LegacyImplReferenced"},
    {CommandType::undo, "undo", "[RUN ...] [FILE|DIR]", false,
     "undo the last or another run that wrote files", "soca undo --list"},
});

constexpr unsigned forUpdate = bitOf(CommandType::update);
constexpr unsigned forReports = bitOf(CommandType::actions) | bitOf(CommandType::classes);
constexpr unsigned forClasses = forUpdate | forReports;
constexpr unsigned forUndo = bitOf(CommandType::undo);
constexpr unsigned forAll =
    forClasses | bitOf(CommandType::check) | bitOf(CommandType::explain) | forUndo;

// "text (default), json or sarif": the first word is the default.
std::string choiceText(const std::vector<std::string_view>& words) {
  std::string text = fmt::format("{} (default)", words.front());
  for (std::size_t i = 1; i < words.size(); ++i) {
    text += fmt::format("{}{}", i + 1 == words.size() ? " or " : ", ", words[i]);
  }
  return text;
}

// "json prints ...; sarif prints ...."
std::string formatDetails() {
  std::string text;
  for (const ReportFormat& format : reportFormats()) {
    if (format.description.empty()) continue;
    text += fmt::format("{}{} {}", text.empty() ? "" : "; ", format.name, format.description);
  }
  return text + '.';
}

std::vector<std::string_view> familyNames() {
  std::vector<std::string_view> names;
  for (const RuleFamily& family : ruleFamilies) names.push_back(family.name);
  return names;
}

std::string kindDetails() {
  std::vector<std::string_view> kinds = ruleWords();
  kinds.erase(kinds.begin(), kinds.begin() + static_cast<std::ptrdiff_t>(ruleFamilies.size()));
  return fmt::format(
      "A kind is a part of a family: {}. A conversion of a chosen family whose kind is not chosen "
      "is left out.",
      fmt::join(kinds, ", "));
}

std::vector<OptionRow> makeOptions() {
  return {
      {"-p,--path",
       "DIR",
       forClasses,
       "a root of the class path, may be repeated (default: .)",
       "Class a.b.C is the file a/b/C.vlm or a/b/C.p below a root. The roots are searched "
       "in the order in which they are given, and the first one that has either file is used.",
       &Options::roots,
       {}},
      {"-r,--rules", "LIST", forUpdate,
       fmt::format("{} or their kinds (default: all)", fmt::join(familyNames(), ",")),
       kindDetails(), readRules, ruleWords()},
      {"--risk", "RISK", forUpdate, "the highest made: safe, review (default) or unsafe",
       "A safe conversion keeps the meaning and all text. One to review keeps the meaning, but a "
       "person should look at it. The result of an unsafe one is known or likely to be wrong. What "
       "has a higher risk is left out, and listed with the reason.",
       readRisk, riskWords()},
      {"--tidy",
       "",
       forUpdate,
       "leave the edited places tidy",
       "No edit leaves a blank at the end of a line, a deleted method takes a comment along that "
       "only repeats its name, and a list of superclasses over several lines keeps its form.",
       &Options::tidy,
       {}},
      {"--no-layout",
       "",
       forUpdate,
       "leave out what needs lines laid apart",
       "Where edits of one conversion are on one line, the members and statements of that line "
       "otherwise get lines of their own first.",
       &Options::noLayout,
       {}},
      {"--only",
       "PATTERN",
       forUpdate,
       "make only conversions whose ids match, may be repeated",
       "The ids are those that --list prints: CLASS#KIND or CLASS#KIND:MEMBER. In a pattern, * is "
       "any text, also with dots, slashes and colons, ? is one character, and [ab] one of several. "
       "All others are left out.",
       &Options::only,
       {}},
      {"--skip",
       "PATTERN",
       forUpdate,
       "leave out conversions whose ids match, may be repeated",
       "The patterns are those of --only. What matches both is left out.",
       &Options::skip,
       {}},
      {"--selection",
       "FILE",
       forUpdate,
       "make only the conversions in FILE",
       "It is JSON, as --list --format json prints it. Each is made with the risk that it has in "
       "FILE, also if that is unsafe. A file that has changed since FILE was made stays as it is.",
       readSelectionFile,
       {}},
      {"-s,--superclasses",
       "",
       forUpdate | bitOf(CommandType::actions),
       "include the superclasses",
       "Each class from which a named one derives is updated too, if it is a System object with "
       "a file of its own.",
       &Options::includeSuperclasses,
       {}},
      {"--write",
       "",
       forUpdate,
       "change the files",
       "A file is left as it was if it changed since it was read, if it is no regular file, or if "
       "its encoding lacks a character of the new text. soca undo undoes the run.",
       &Options::write,
       {}},
      {"--verify",
       "CMD",
       forUpdate,
       "with --write: undo the run if the command CMD fails",
       "The shell runs CMD in the current folder after the files are written. If it fails, cannot "
       "be started or is interrupted, the run is undone as by soca undo, and the exit code is 2, "
       "or that of the interrupt. If nothing was written, CMD is not run. With --format json, what "
       "CMD prints to standard output goes to standard error.",
       readVerify,
       {}},
      {"--check",
       "",
       forUpdate,
       "print the names of what would change, and exit with 1",
       "Nothing is written. The names are those of classes, each on a line.",
       &Options::check,
       {}},
      {"--list",
       "",
       forUpdate,
       "print the conversions, each on a line",
       "Nothing is written. The columns, separated by tabs, are the id, the risk, \"made\" or the "
       "reason for which it would be left out, and the file with the line. With --format json the "
       "output is a file for --selection.",
       &Options::list,
       {}},
      {"--allow-dirty",
       "",
       forUpdate,
       "write files with uncommitted changes too",
       "Otherwise a file is refused if git could not restore its content: if it has uncommitted "
       "changes, or is not tracked.",
       &Options::allowDirty,
       {}},
      {"--no-ignore",
       "",
       forUpdate,
       "walk ignored files and linked folders too",
       "Otherwise what git ignores, and links to folders, are left out of a walk, unless they are "
       "named themselves.",
       &Options::noIgnore,
       {}},
      {"--as-service",
       "",
       forUpdate,
       "the answers of the service, class by class",
       "For comparing with a host of the bundle: each class is one call of the service, its text "
       "is the service's, and nothing but the checks of a new text refuses it. Nothing is said of "
       "the roots of the class path.",
       &Options::asService,
       {}},
      {"--unresolved",
       "",
       bitOf(CommandType::classes),
       "print the superclasses that are not found",
       "An argument may also be a folder; without arguments all roots are selected. With --format "
       "json the output is a class table, in which each \"?\" is to be replaced with the names of "
       "the superclasses of that class.",
       &Options::unresolved,
       {}},
      {"--format", "FORMAT", forUpdate | bitOf(CommandType::classes), choiceText(formatWords()),
       formatDetails(), readFormat, formatWords()},
      {"--list", "", forUndo, "print the runs that can be undone", "", &Options::list, {}},
      {"--dry-run",
       "",
       forUndo,
       "print what would be undone",
       "Nothing is changed, and interrupted runs are not repaired.",
       &Options::dryRun,
       {}},
      {"--forget",
       "",
       forUndo,
       "print the files of the runs RUN ..., and remove their records",
       "The runs cannot be undone any more. This is for a run whose record is damaged, or was "
       "written by another version of soca.",
       &Options::forget,
       {}},
      {"--edits",
       "",
       forUpdate,
       "with --format json: print the single replacements too",
       "Each has its offset and length in bytes of the file, and its text; the SHA-256 is that of "
       "the file for which they were made.",
       &Options::edits,
       {}},
      {"--report",
       "FILE",
       forUpdate,
       "make a review page in FILE too, for a browser",
       "The page is that of --format html. FILE appears when the run has ended, and is replaced if "
       "it is there.",
       readReportFile,
       {}},
      {"--summary",
       "",
       forUpdate,
       "print the numbers without diffs",
       "Nor are there lines for findings and for conversions that are left out. Failures are "
       "printed as with -q.",
       &Options::summary,
       {}},
      {"--group-by", "GROUP", forUpdate,
       fmt::format("rows of the numbers: {}", choiceText(groupWords())),
       "For each kind of conversion or each package: how many conversions were found, made and "
       "left out. By reason: why they were left out, by kind.",
       readGroup, groupWords()},
      {"--stdin-path",
       "PATH",
       forUpdate,
       "with '-': the class that standard input holds",
       "For editors: the argument is -, the text is used as that of the file PATH, and the updated "
       "text goes to standard output, which stays empty on a failure.",
       readStdinPath,
       {}},
      {"--class-table",
       "FILE",
       forClasses,
       "JSON with facts about classes that sources lack",
       "It adds classes, or replaces what the source says about one, class by class: superclasses, "
       "strict defaults, methods, and properties.",
       readClassTable,
       {}},
      {"-j,--jobs",
       "N",
       forAll,
       "threads (default: one for each processor)",
       "The output is the same for any number.",
       readJobs,
       {}},
      {"-q,--quiet",
       "",
       forAll,
       "no diff, no findings, and ten lines of each reason",
       "The reasons are those for which a class fails or is undecided, or a conversion is left "
       "out.",
       &Options::quiet,
       {}},
      {"-v,--verbose", "", forAll, "print more about each class", "", &Options::verbose, {}},
      {"--stats",
       "",
       forUpdate,
       "print the time of each phase, and the memory",
       "",
       &Options::stats,
       {}},
      {"--color", "WHEN", forAll, choiceText(colorWords()),
       "For standard output and standard error. See also the environment variables below.",
       readColor, colorWords()},
      {"-h,--help", "", forAll, "print this help", "", &Options::help, {}},
  };
}

constexpr auto exitCodes = std::to_array<ExitCodeRow>({
    {ExitCodeType::done, forAll, "done"},
    {ExitCodeType::somethingToChange, forUpdate, "--check found something to change"},
    {ExitCodeType::failed, forAll,
     "something failed or was refused, or the command line was wrong"},
    {ExitCodeType::hungUp, forAll, "the terminal was closed"},
    {ExitCodeType::interrupted, forAll, "interrupted"},
    {ExitCodeType::readerGone, forAll, "nothing reads the output any more"},
    {ExitCodeType::terminated, forAll, "terminated"},
});

}  // namespace

std::vector<std::string_view> namesOf(const OptionRow& row) {
  const std::size_t comma = row.flags.find(',');
  if (comma == std::string_view::npos) return {row.flags};
  return {row.flags.substr(0, comma), row.flags.substr(comma + 1)};
}

std::span<const CommandRow> commandRows() { return commands; }
std::span<const OptionRow> optionRows() {
  static const std::vector<OptionRow> options = makeOptions();
  return options;
}
std::span<const ExitCodeRow> exitCodeRows() { return exitCodes; }

const CommandRow* findCommand(std::string_view name) {
  const auto* row = std::ranges::find(commands, name, &CommandRow::name);
  return row == commands.end() ? nullptr : row;
}

const CommandRow& commandRow(CommandType type) {
  return *std::ranges::find(commands, type, &CommandRow::type);
}

}  // namespace soca::cli
