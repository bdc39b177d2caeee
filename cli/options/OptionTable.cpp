#include "cli/options/OptionTable.h"
#include "rules/RuleFamilies.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <tuple>

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

constexpr OptionWord ruleWordOf(const RuleFamily& family) { return {family.name, family.bit}; }

constexpr auto ruleWords = std::apply(
    [](const auto&... families) { return std::array{ruleWordOf(families)...}; }, ruleFamilies);

// "some of attributes,mixins,impl (default: all)"
constexpr std::string makeRulesText() {
  std::string names;
  for (const RuleFamily& family : ruleFamilies) {
    if (!names.empty()) names += ',';
    names += family.name;
  }
  return "some of " + names + " (default: all)";
}
constexpr auto rulesText = [] {
  std::array<char, makeRulesText().size()> text{};
  std::ranges::copy(makeRulesText(), text.begin());
  return text;
}();

constexpr auto colorWords = std::to_array<OptionWord>(
    {{"auto", ColorType::automatic}, {"always", ColorType::always}, {"never", ColorType::never}});
constexpr auto formatWords = std::to_array<OptionWord>(
    {{"text", FormatType::text}, {"json", FormatType::json}, {"sarif", FormatType::sarif}});

constexpr auto options = std::to_array<OptionRow>({
    {OptionType::path, "-p,--path", "DIR", forClasses,
     "a root of the class path, may be repeated (default: .)"},
    {OptionType::rules, "-r,--rules", "LIST", forUpdate,
     std::string_view(rulesText.data(), rulesText.size()), ruleWords},
    {OptionType::superclasses, "-s,--superclasses", "", forUpdate | bitOf(CommandType::actions),
     "take the superclasses along"},
    {OptionType::write, "--write", "", forUpdate, "change the files"},
    {OptionType::check, "--check", "", forUpdate,
     "print the names of what would change, and exit with 1"},
    {OptionType::allowDirty, "--allow-dirty", "", forUpdate,
     "write files with uncommitted changes too"},
    {OptionType::noIgnore, "--no-ignore", "", forUpdate,
     "walk ignored, hidden and linked folders too"},
    {OptionType::format, "--format", "FORMAT", forUpdate, "text (default), json or sarif",
     formatWords},
    {OptionType::list, "--list", "", forUndo, "print the runs that can be undone"},
    {OptionType::edits, "--edits", "", forUpdate,
     "with --format json: the single replacements too"},
    {OptionType::stdinPath, "--stdin-path", "PATH", forUpdate,
     "with '-': the text of this class is standard input"},
    {OptionType::classTable, "--class-table", "FILE", forClasses,
     "a JSON file with what source can't tell of classes"},
    {OptionType::jobs, "-j,--jobs", "N", forAll, "threads (default: one for each processor)"},
    {OptionType::quiet, "-q,--quiet", "", forAll, "no diff and no findings"},
    {OptionType::verbose, "-v,--verbose", "", forAll, "say more of each class"},
    {OptionType::stats, "--stats", "", forUpdate, "tell the time of each phase, and the memory"},
    {OptionType::color, "--color", "WHEN", forAll, "auto (default), always or never", colorWords},
    {OptionType::help, "-h,--help", "", forAll, "print this and end"},
});

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
std::span<const OptionRow> optionRows() { return options; }
std::span<const ExitCodeRow> exitCodeRows() { return exitCodes; }

const CommandRow* findCommand(std::string_view name) {
  const auto* row = std::ranges::find(commands, name, &CommandRow::name);
  return row == commands.end() ? nullptr : row;
}

const CommandRow& commandRow(CommandType type) {
  return *std::ranges::find(commands, type, &CommandRow::type);
}

const OptionRow& optionRow(OptionType type) {
  return *std::ranges::find(options, type, &OptionRow::type);
}

}  // namespace soca::cli
