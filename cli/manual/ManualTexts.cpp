#include "cli/manual/ManualTexts.h"

#include <algorithm>
#include <array>

namespace soca::cli {
namespace {

struct CommandDetails {
  CommandType type;
  std::string_view text;
};

constexpr auto commandDetails = std::to_array<CommandDetails>({
    {CommandType::update,
     "An argument is the name of a class, a class file on the class path, or a folder on it, which "
     "selects every class file below it. An existing file or folder, and an argument with a slash, "
     "is a path. Without arguments all roots are selected. Without --write the changes are printed "
     "as a unified diff on standard output, which git apply and patch accept; findings and a "
     "summary go to standard error. All classes are computed and checked before the first file is "
     "written, and a class that fails does not stop the others. Classes below a folder that are no "
     "System objects are counted and skipped."},
    {CommandType::actions,
     "The report is that of the update service: for each edit the zero-based lines and columns of "
     "the text that it replaces, and the new text."},
    {CommandType::classes,
     "The report is that of the update service: superclasses, properties and methods. With "
     "--unresolved the superclasses that are not found are printed in its place."},
    {CommandType::check,
     "Each error is printed on standard output with file, line and column, which count from one, "
     "and with the line that it is in. The files need not be on a class path."},
    {CommandType::explain,
     "ID is the name of a rule, or the id of a message, which is printed after a finding and "
     "before "
     "an error. Without one, all of them are listed."},
    {CommandType::undo,
     "RUN is the number of a run, as --list shows it; the default is the last run that changed a "
     "file in the current folder, or in the named one. The files get back their bytes, permissions "
     "and times. With FILE or DIR, only that file, or the files below that folder, do. A run whose "
     "record is damaged is refused; several runs are taken only with --forget."},
});

constexpr auto descriptionTexts = std::to_array<std::string_view>({
    "soca updates the class files of System objects. A System object is a class written in Velum's "
    "class-definition language that derives from the environment's System base classes. The "
    "environment has deprecated several old ways of writing such classes; soca rewrites them in "
    "the current form, and leaves every other character of the file as it was. It reports what it "
    "cannot convert.",
    "Nothing is written without --write.",
});

constexpr auto environmentTexts = std::to_array<ManualEntry>({
    {"NO_COLOR", "If it is set and not empty, there are no colours, unless --color enables them."},
    {"FORCE_COLOR",
     "If it is set, not empty, and not 0, there are colours even without a terminal, unless "
     "NO_COLOR or --color disables them."},
    {"TERM", "If it is dumb or not set, a terminal gets no colours by default."},
    {"XDG_STATE_HOME",
     "The folder for the records of runs that wrote files; by default ~/.local/state."},
    {"TMPDIR", "The folder for the temporary files of a run; by default /tmp."},
});

constexpr auto fileTexts = std::to_array<ManualEntry>({
    {"*.vlm", "The source of a class, in UTF-8 or ISO-8859-1. Line ends and encoding are kept."},
    {"*.p",
     "The compiled form of a class. It has precedence over the source beside it, and cannot be "
     "updated."},
    {"$XDG_STATE_HOME/soca", "The records of runs that wrote files, which undo needs."},
});

constexpr auto exampleTexts = std::to_array<ManualEntry>({
    {"soca update -p src src/control | git apply",
     "Changes the classes of one package through a diff."},
    {"soca update -p src --check -q", "Shows by its exit code whether a class would change."},
    {"soca update -p src --write -r mixins,impl",
     "Changes all classes below src by two of the rules."},
    {"soca update -p src --format json | jq .errors", "Lists what failed."},
});

}  // namespace

std::string_view detailsOf(const CommandRow& row) {
  const auto* details = std::ranges::find(commandDetails, row.type, &CommandDetails::type);
  return details == commandDetails.end() ? std::string_view() : details->text;
}

std::span<const std::string_view> description() { return descriptionTexts; }
std::span<const ManualEntry> environmentVariables() { return environmentTexts; }
std::span<const ManualEntry> files() { return fileTexts; }
std::span<const ManualEntry> examples() { return exampleTexts; }

}  // namespace soca::cli
