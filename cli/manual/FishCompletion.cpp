#include <fmt/ranges.h>

#include "cli/manual/CompletionTable.h"
#include "cli/manual/Completions.h"
#include "platform/text/ShellText.h"

namespace soca::cli {
namespace {

constexpr std::string_view helpers = R"(# Completes lines of the program soca in fish.

# The packages and classes that begin with the word, by the roots on the line.
function __soca_classes
    set -l word (commandline -ct)
    set -l package (string match -r '.*\.' -- $word)
    set -l line (commandline -opc)
    set -l roots
    for i in (seq (count $line))
        switch $line[$i]
            case -p --path
                set -l next (math $i + 1)
                set -q line[$next]; and set -a roots $line[$next]
            case '--path=*'
                set -a roots (string replace -- --path= '' $line[$i])
        end
    end
    set -q roots[1]; or set roots .
    for root in $roots
        for entry in $root/(string replace -a . / -- "$package")*
            set -l name (string replace -r '.*/' '' -- $entry)
            if test -d $entry
                string match -qr '^\w+$' -- $name; and echo $package$name.
            else
                string match -qr '^\w+\.(vlm|p)$' -- $name
                and echo $package(string replace -r '\.\w+$' '' -- $name)
            end
        end
    end
end

function __soca_is
    set -l line (commandline -opc)
    set -q line[2]; and contains -- $line[2] $argv
end

complete -c soca -f
)";

// The flags after the condition that complete the value.
std::string valueFlags(const OptionRow& row) {
  switch (completionOf(row)) {
    case CompletionType::words:
      return fmt::format(" -x -a '{}'", joinWords(row, " "));
    case CompletionType::wordList:
      return fmt::format(" -x -a '(__fish_append , {})'", joinWords(row, " "));
    case CompletionType::folder:
      return " -x -a '(__fish_complete_directories (commandline -ct))'";
    case CompletionType::file:
      return " -r -F";
    default:
      return row.value.empty() ? "" : " -x";
  }
}

std::string argumentFlags(const CommandRow& command) {
  switch (completionOf(command)) {
    case CompletionType::className:
      return "-a '(__soca_classes)'";
    case CompletionType::classOrFile:
      return "-F -a '(__soca_classes)'";
    case CompletionType::file:
      return "-F";
    case CompletionType::id:
      return fmt::format("-a '{}'", fmt::join(completedIds(), " "));
    default:
      return {};
  }
}

}  // namespace

std::string fishCompletion() {
  std::string text(helpers);
  constexpr std::string_view atStart = "complete -c soca -n __fish_use_subcommand";
  for (const CommandRow& row : commandRows()) {
    text += fmt::format("{} -a {} -d {}\n", atStart, row.name, fl::quoteForShell(row.summary));
  }
  text += fmt::format("{} -l help\n{} -l version\n", atStart, atStart);
  for (const CommandRow& row : commandRows()) {
    const std::string flags = argumentFlags(row);
    if (!flags.empty())
      text += fmt::format("complete -c soca -n '__soca_is {}' {}\n", row.name, flags);
  }
  for (const OptionRow& row : optionRows()) {
    text += fmt::format("complete -c soca -n '__soca_is {}'", fmt::join(commandsOf(row), " "));
    for (const std::string_view name : namesOf(row)) {
      const bool isLong = name.starts_with("--");
      text += fmt::format(" -{} {}", isLong ? 'l' : 's', name.substr(isLong ? 2 : 1));
    }
    text += fmt::format("{} -d {}\n", valueFlags(row), fl::quoteForShell(row.text));
  }
  return text;
}

}  // namespace soca::cli
