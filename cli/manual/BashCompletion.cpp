#include <fmt/ranges.h>

#include "cli/manual/CompletionTable.h"
#include "cli/manual/Completions.h"

namespace soca::cli {
namespace {

// The part that does not depend on the options. Each word in `COMPREPLY` is a completion.
constexpr std::string_view helpers = R"(# Completes lines of the program soca in bash.

# The folders and classes that begin with the word, by the roots on the line.
_soca_classes() {
  local cur=$1 package='' folder root entry name i roots=()
  [[ $cur != *.* ]] || package=${cur%.*}.
  folder=${package//.//}
  for ((i = 2; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      -p | --path)
        root=${COMP_WORDS[i + 1]}
        [[ $root != = ]] || root=${COMP_WORDS[i + 2]}
        roots+=("${root/#\~/$HOME}")
        ;;
    esac
  done
  for root in "${roots[@]:-.}"; do
    for entry in "$root/$folder"*; do
      name=${entry##*/}
      if [[ -d $entry ]]; then
        name+=.
      elif [[ $name == *.vlm || $name == *.p ]]; then
        name=${name%.*}
      else
        continue
      fi
      [[ ${name%.} != *[^[:alnum:]_]* && $package$name == "$cur"* ]] || continue
      COMPREPLY+=("$package$name")
    done
  done
  # More is to follow behind the name of a package.
  [[ ${COMPREPLY[0]-} != *. ]] || compopt -o nospace 2>/dev/null
}

# Adds the lines of its input.
_soca_add() {
  local lines
  mapfile -t lines
  COMPREPLY+=("${lines[@]}")
}

_soca_files() {
  compopt -o filenames 2>/dev/null
  _soca_add < <(compgen "$1" -- "$2")
}

_soca_words() {
  _soca_add < <(compgen -W "$1" -- "$2")
}

# Words parted by commas, of which the last one is completed.
_soca_list() {
  local front=''
  [[ $2 != *,* ]] || front=${2%,*},
  _soca_add < <(compgen -P "$front" -W "$1" -- "${2##*,}")
}

)";

// The call that completes `$cur`.
std::string callFor(CompletionType type, std::string_view words) {
  switch (type) {
    case CompletionType::words:
      return fmt::format("_soca_words '{}' \"$cur\"", words);
    case CompletionType::wordList:
      return fmt::format("_soca_list '{}' \"$cur\"", words);
    case CompletionType::folder:
      return "_soca_files -d \"$cur\"";
    case CompletionType::file:
      return "_soca_files -f \"$cur\"";
    case CompletionType::className:
      return "_soca_classes \"$cur\"";
    case CompletionType::classOrFile:
      return "_soca_classes \"$cur\"\n      ((${#COMPREPLY[@]})) || _soca_files -f \"$cur\"";
    case CompletionType::id:
      return fmt::format("_soca_words '{}' \"$cur\"", fmt::join(completedIds(), " "));
    case CompletionType::nothing:
      break;
  }
  return ":";
}

// The branches for values of options: `update:-p | update:--path) ... ;;`
std::string valueBranches() {
  std::string text;
  for (const OptionRow& row : optionRows()) {
    if (row.value.empty()) continue;
    std::vector<std::string> patterns;
    for (const std::string_view command : commandsOf(row)) {
      for (const std::string_view name : namesOf(row)) {
        patterns.push_back(fmt::format("{}:{}", command, name));
      }
    }
    text += fmt::format("    {})\n      {}\n      return\n      ;;\n", fmt::join(patterns, " | "),
                        callFor(completionOf(row), joinWords(row, " ")));
  }
  return text;
}

std::string commandBranches() {
  std::string text;
  for (const CommandRow& command : commandRows()) {
    std::vector<std::string_view> options;
    for (const OptionRow& row : optionRows()) {
      if (isFor(command.type, row)) options.push_back(namesOf(row).back());
    }
    text += fmt::format(
        "    {}:-*)\n      _soca_words '{}' \"$cur\"\n      ;;\n    {}:*)\n      {}\n      ;;\n",
        command.name, fmt::join(options, " "), command.name, callFor(completionOf(command), ""));
  }
  return text;
}

}  // namespace

std::string bashCompletion() {
  std::vector<std::string_view> commands;
  for (const CommandRow& row : commandRows()) commands.push_back(row.name);
  std::string text(helpers);
  text +=
      "_soca() {\n"
      "  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}\n"
      "  COMPREPLY=()\n";
  text += fmt::format(
      "  if ((COMP_CWORD == 1)); then\n    _soca_words '{} --help --version' \"$cur\"\n"
      "    return\n  fi\n",
      fmt::join(commands, " "));
  text +=
      "  # bash parts words at `=` too.\n"
      "  if [[ $cur == = ]]; then\n    cur=''\n"
      "  elif [[ $prev == = ]]; then\n    prev=${COMP_WORDS[COMP_CWORD - 2]}\n  fi\n";
  text += "  case ${COMP_WORDS[1]}:$prev in\n" + valueBranches() + "  esac\n";
  text += "  case ${COMP_WORDS[1]}:$cur in\n" + commandBranches() + "  esac\n";
  return text + "}\n\ncomplete -F _soca soca\n";
}

}  // namespace soca::cli
