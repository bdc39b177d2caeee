#include <fmt/ranges.h>

#include "cli/manual/CompletionTable.h"
#include "cli/manual/Completions.h"
#include "platform/text/ShellText.h"

namespace soca::cli {
namespace {

constexpr std::string_view helpers = R"(#compdef soca
# Completes lines of the program soca in zsh.

# The packages and classes that begin with the word, by the roots on the line.
_soca_classes() {
  local package= root entry name i
  local -a roots classes packages
  [[ $PREFIX != *.* ]] || package=${PREFIX%.*}.
  for ((i = 1; i < CURRENT; i++)); do
    case $words[i] in
      -p | --path) roots+=(${~words[i + 1]}) ;;
      --path=*) roots+=(${~words[i]#*=}) ;;
    esac
  done
  (( $#roots )) || roots=(.)
  for root in $roots; do
    for entry in $root/${package//.//}*(N); do
      name=${entry:t}
      [[ ${name%.(vlm|p)} == [[:IDENT:]]## ]] || continue
      if [[ -d $entry ]]; then
        packages+=($package$name.)
      elif [[ $name == *.(vlm|p) ]]; then
        classes+=($package${name:r})
      fi
    done
  done
  _wanted classes expl class compadd -a classes
  _wanted packages expl package compadd -S '' -a packages
}

_soca_targets() {
  _alternative 'classes:class:_soca_classes' 'files:file:_files'
}

)";

// Escapes brackets and backslashes in the description of an option.
std::string bracketed(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '[' || character == ']' || character == '\\') result += '\\';
    result += character;
  }
  return result;
}

// `:DIR:_files -/`; empty for a switch.
std::string valueAction(const OptionRow& row) {
  if (row.value.empty()) return {};
  switch (completionOf(row)) {
    case CompletionType::words:
      return fmt::format(":{}:({})", row.value, joinWords(row, " "));
    case CompletionType::wordList:
      return fmt::format(":{}:_values -s , {} {}", row.value, row.value, joinWords(row, " "));
    case CompletionType::folder:
      return fmt::format(":{}:_files -/", row.value);
    case CompletionType::file:
      return fmt::format(":{}:_files", row.value);
    default:
      return fmt::format(":{}: ", row.value);
  }
}

// One line for each name of the option. Only options for folders may be repeated.
std::string optionSpecs(const OptionRow& row) {
  const auto names = namesOf(row);
  const std::string front = completionOf(row) == CompletionType::folder
                                ? "*"
                                : fmt::format("({})", fmt::join(names, " "));
  std::string text;
  for (const std::string_view name : names) {
    const bool takesEquals = !row.value.empty() && name.starts_with("--");
    const auto entry = fmt::format("{}{}{}[{}]{}", front, name, takesEquals ? "=" : "",
                                   bracketed(row.text), valueAction(row));
    text += fmt::format("        {} \\\n", fl::quoteForShell(entry));
  }
  return text;
}

std::string argumentSpec(const CommandRow& command) {
  switch (completionOf(command)) {
    case CompletionType::className:
      return "'*:class:_soca_classes'";
    case CompletionType::classOrFile:
      return "'*:class or file:_soca_targets'";
    case CompletionType::file:
      return "'*:file:_files'";
    case CompletionType::id:
      return fmt::format("'1:id:({})'", fmt::join(completedIds(), " "));
    default:
      return "'*: : '";
  }
}

}  // namespace

std::string zshCompletion() {
  std::string text(helpers);
  text += "_soca() {\n  setopt local_options extended_glob\n  local -a commands=(\n";
  for (const CommandRow& row : commandRows()) {
    text += fmt::format("    {}\n", fl::quoteForShell(fmt::format("{}:{}", row.name, row.summary)));
  }
  text +=
      "  )\n  if ((CURRENT == 2)); then\n"
      "    _describe command commands\n    compadd -- --help --version\n    return\n  fi\n"
      "  local command=$words[2]\n  shift words\n  ((CURRENT--))\n  case $command in\n";
  for (const CommandRow& command : commandRows()) {
    text += fmt::format("    {})\n      _arguments -s -S \\\n", command.name);
    for (const OptionRow& row : optionRows()) {
      if (isFor(command.type, row)) text += optionSpecs(row);
    }
    text += fmt::format("        {}\n      ;;\n", argumentSpec(command));
  }
  return text + "  esac\n}\n\n_soca \"$@\"\n";
}

}  // namespace soca::cli
