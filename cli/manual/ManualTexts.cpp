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
     "stands for every class file below it. An existing file or folder, and whatever has a slash, "
     "is a path. No argument stands for every root. Without --write the changes are printed as a "
     "unified diff on standard output, which git apply and patch take; findings and a summary go "
     "to standard error. All classes are computed and checked before the first file is written, "
     "and a class that fails never keeps the others from being done. Of the classes below a "
     "folder, those that are no System objects are counted and passed over."},
    {CommandType::actions,
     "The report is that of the update service: for each edit the zero-based lines and columns of "
     "what it replaces, and the text that takes its place."},
    {CommandType::classes,
     "The report is that of the update service: superclasses, properties and methods."},
    {CommandType::check,
     "Each error is printed on standard output with file, line and column, which count from one, "
     "and with the line that it is in. The files need not be on a class path."},
    {CommandType::explain,
     "ID is the name of a rule, or the id of a message as it stands behind a finding or in front "
     "of an error. Without one, all of them are listed."},
    {CommandType::undo,
     "RUN is a run as --list shows it; without one it is the last. The files get back their bytes, "
     "permissions and times."},
});

constexpr auto descriptionTexts = std::to_array<std::string_view>({
    "soca brings the class files of System objects up to date. A System object is a class written "
    "in Velum's class-definition language that derives from the environment's System base "
    "classes. The environment has deprecated several old ways of writing such classes; soca "
    "rewrites them in the current form and leaves everything else in the file as it was, to the "
    "character. What it can't convert it reports.",
    "Nothing is written without --write.",
});

constexpr auto environmentTexts = std::to_array<ManualEntry>({
    {"NO_COLOR", "If it is set and not empty, there are no colours, unless --color asks for them."},
    {"FORCE_COLOR",
     "If it is set to something else than 0 and not empty, there are colours also where there is "
     "no terminal, unless NO_COLOR or --color forbids them."},
    {"TERM", "If it is dumb or not set, a terminal gets no colours of itself."},
    {"XDG_STATE_HOME",
     "The folder below which runs that wrote files are kept; otherwise ~/.local/state."},
    {"TMPDIR", "The folder for what is put aside during a run; otherwise /tmp."},
});

constexpr auto fileTexts = std::to_array<ManualEntry>({
    {"*.vlm", "The source of a class, in UTF-8 or ISO-8859-1. Line ends and encoding are kept."},
    {"*.p",
     "The compiled form of a class. It stands in front of the source beside it and can't be "
     "updated."},
    {"$XDG_STATE_HOME/soca", "What undo needs of the runs that wrote files."},
});

constexpr auto exampleTexts = std::to_array<ManualEntry>({
    {"soca update -p src src/control | git apply",
     "Changes the classes of one package through a diff."},
    {"soca update -p src --check -q", "Tells by its exit code whether there is anything to do."},
    {"soca update -p src --write -r mixins,impl", "Changes all classes below src by two rules."},
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
