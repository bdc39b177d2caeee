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
    {CommandType::classes, "classes", "CLASS ...", true, "print what is known of classes",
     "soca classes -p src control.Pid"},
    {CommandType::check, "check", "FILE ...", true, "print the syntax errors of class files",
     "soca check src/control/Pid.vlm"},
    {CommandType::explain, "explain", "[ID]", false, "tell what a rule converts or a message means",
     "soca explain LegacyImplReferenced"},
    {CommandType::undo, "undo", "[RUN]", false, "put back what the last or another run wrote",
     "soca undo --list"},
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

std::vector<OptionRow> makeOptions() {
  return {
      {"-p,--path",
       "DIR",
       forClasses,
       "a root of the class path, may be repeated (default: .)",
       "Class a.b.C is the file a/b/C.vlm or a/b/C.p below a root. The roots are asked in the "
       "order "
       "in which they are given, and the first one that has either file wins.",
       &Options::roots,
       {}},
      {"-r,--rules", "LIST", forUpdate,
       fmt::format("some of {} (default: all)", fmt::join(ruleWords(), ",")), "", readRules,
       ruleWords()},
      {"-s,--superclasses",
       "",
       forUpdate | bitOf(CommandType::actions),
       "take the superclasses along",
       "Each class that a named one derives from is updated too, if it is a System object with a "
       "file of its own.",
       &Options::includeSuperclasses,
       {}},
      {"--write",
       "",
       forUpdate,
       "change the files",
       "A file that changed since it was read, that is no regular file, or that can't hold the new "
       "text in its encoding is left as it was. soca undo takes the run back.",
       &Options::write,
       {}},
      {"--check",
       "",
       forUpdate,
       "print the names of what would change, and exit with 1",
       "Nothing is written. The names are those of classes, each on a line.",
       &Options::check,
       {}},
      {"--allow-dirty",
       "",
       forUpdate,
       "write files with uncommitted changes too",
       "Otherwise a file is refused if git could not bring back what is in it: if it has "
       "uncommitted changes, or if git does not know it.",
       &Options::allowDirty,
       {}},
      {"--no-ignore",
       "",
       forUpdate,
       "walk what git ignores, and linked folders, too",
       "Otherwise what git ignores, and links to folders, are left out of a walk, unless they are "
       "named themselves.",
       &Options::noIgnore,
       {}},
      {"--format", "FORMAT", forUpdate, choiceText(formatWords()), formatDetails(), readFormat,
       formatWords()},
      {"--list", "", forUndo, "print the runs that can be undone", "", &Options::list, {}},
      {"--edits",
       "",
       forUpdate,
       "with --format json: the single replacements too",
       "Each has its offset and length in bytes of the file and its text; beside them stands the "
       "SHA-256 of the file for which they were made.",
       &Options::edits,
       {}},
      {"--stdin-path",
       "PATH",
       forUpdate,
       "with '-': the text of this class is standard input",
       "For editors: the argument is -, the text counts as that of the file PATH, and the updated "
       "text goes to standard output, which stays empty on a failure.",
       readStdinPath,
       {}},
      {"--class-table",
       "FILE",
       forClasses,
       "a JSON file with what source can't tell of classes",
       "It adds classes, or answers for what source says of one, class by class: superclasses, "
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
      {"-q,--quiet", "", forAll, "no diff and no findings", "", &Options::quiet, {}},
      {"-v,--verbose", "", forAll, "say more of each class", "", &Options::verbose, {}},
      {"--stats",
       "",
       forUpdate,
       "tell the time of each phase, and the memory",
       "",
       &Options::stats,
       {}},
      {"--color", "WHEN", forAll, choiceText(colorWords()),
       "On standard output and on standard error alike. See also the environment variables below.",
       readColor, colorWords()},
      {"-h,--help", "", forAll, "print this and end", "", &Options::help, {}},
  };
}

constexpr auto exitCodes = std::to_array<ExitCodeRow>({
    {ExitCodeType::done, forAll, "done"},
    {ExitCodeType::somethingToChange, forUpdate, "--check found something to change"},
    {ExitCodeType::failed, forAll,
     "something failed or was refused, or the command line was wrong"},
    {ExitCodeType::interrupted, forAll, "interrupted"},
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
