#include "cli/manual/ManualPage.h"

#include <fmt/ranges.h>

#include <string_view>
#include <vector>

#include "cli/manual/CompletionTable.h"
#include "cli/manual/ManualTexts.h"

namespace soca::cli {
namespace {

// The text with roff's escapes for dashes, quotes and backslashes.
std::string escape(std::string_view text) {
  std::string escaped;
  if (text.starts_with('.') || text.starts_with('\'')) escaped += "\\&";
  for (const char character : text) {
    switch (character) {
      case '\\':
        escaped += "\\e";
        break;
      case '-':
        escaped += "\\-";
        break;
      case '\'':
        escaped += "\\(aq";
        break;
      case '`':
        escaped += "\\(ga";
        break;
      case '~':
        escaped += "\\(ti";
        break;
      case '^':
        escaped += "\\(ha";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

std::string bold(std::string_view text) { return fmt::format("\\fB{}\\fR", escape(text)); }
std::string italic(std::string_view text) { return fmt::format("\\fI{}\\fR", escape(text)); }

std::string section(std::string_view title) { return fmt::format(".SH {}\n", title); }

// A sentence made of a text without a capital letter and a full stop.
std::string sentence(std::string_view text) {
  std::string result(text);
  if (result.front() >= 'a' && result.front() <= 'z') {
    result.front() = static_cast<char>(result.front() - 'a' + 'A');
  }
  return escape(result) + ".\n";
}

// A tagged paragraph; `text` consists of lines of the page.
std::string entry(std::string_view tag, std::string_view text) {
  return fmt::format(".TP\n{}\n{}", tag, text);
}

std::string details(std::string_view text) {
  return text.empty() ? std::string() : escape(text) + '\n';
}

std::string synopsis() {
  std::string text = section("SYNOPSIS");
  for (const CommandRow& row : commandRows()) {
    text += fmt::format("{} [{}] {}\n.br\n", bold(fmt::format("soca {}", row.name)),
                        italic("options"), italic(row.arguments));
  }
  return text + bold("soca --help") + " | " + bold("--version") + '\n';
}

std::string commands() {
  std::string text = section("COMMANDS");
  for (const CommandRow& row : commandRows()) {
    text += entry(fmt::format("{} {}", bold(row.name), italic(row.arguments)),
                  sentence(row.summary) + details(detailsOf(row)));
  }
  return text;
}

std::string optionTag(const OptionRow& row) {
  std::string tag;
  for (const std::string_view name : namesOf(row)) {
    if (!tag.empty()) tag += ", ";
    tag += bold(name);
  }
  return row.value.empty() ? tag : fmt::format("{} {}", tag, italic(row.value));
}

std::string options() {
  std::string text = section("OPTIONS");
  for (const OptionRow& row : optionRows()) {
    // A text that begins with a literal word keeps its small letter.
    std::string body =
        completionOf(row) == CompletionType::words ? escape(row.text) + ".\n" : sentence(row.text);
    body += details(row.details);
    const auto owners = commandsOf(row);
    if (owners.size() < commandRows().size()) {
      body += escape(fmt::format("({})", fmt::join(owners, ", "))) + '\n';
    }
    text += entry(optionTag(row), body);
  }
  return text;
}

std::string exitStatus() {
  std::string text = section("EXIT STATUS");
  for (const ExitCodeRow& row : exitCodeRows()) {
    text += entry(bold(fmt::format("{}", static_cast<int>(row.code))), sentence(row.text));
  }
  return text + ".PP\n" +
         escape(
             "A wrong command line does nothing at all. The codes above 128 are those that a "
             "shell reports: the program cleans up, and is ended by the signal itself.") +
         '\n';
}

std::string entries(std::string_view title, std::span<const ManualEntry> rows) {
  std::string text = section(title);
  for (const ManualEntry& row : rows) text += entry(bold(row.name), details(row.text));
  return text;
}

std::string exampleLines() {
  std::string text = section("EXAMPLES");
  for (const ManualEntry& row : examples()) {
    text += entry(escape(row.name), details(row.text));
  }
  for (const CommandRow& row : commandRows()) {
    if (row.type == CommandType::update) continue;
    text += entry(escape(row.example), sentence(row.summary));
  }
  return text;
}

}  // namespace

std::string manualPage() {
  std::string text = fmt::format(".TH SOCA 1 \"\" \"soca {}\" \"User Commands\"\n", SOCA_VERSION);
  text += section("NAME") + "soca \\- bring the class files of System objects up to date\n";
  text += synopsis() + section("DESCRIPTION");
  for (const std::string_view paragraph : description()) {
    text += ".PP\n" + escape(paragraph) + '\n';
  }
  return text + commands() + options() + exitStatus() +
         entries("ENVIRONMENT", environmentVariables()) + entries("FILES", files()) +
         exampleLines() + section("SEE ALSO") + bold("git-apply") + "(1), " + bold("patch") +
         "(1)\n";
}

}  // namespace soca::cli
