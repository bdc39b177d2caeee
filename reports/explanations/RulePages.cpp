#include "reports/explanations/RulePages.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>

#include "reports/explanations/MessageExplanations.h"

namespace soca {
namespace {

constexpr std::size_t lineWidth = 140;
constexpr std::string_view indexFile = "README.md";
constexpr std::string_view failuresFile = "failures.md";

constexpr std::string_view header =
    "<!-- Made from resources/messages.json. Change that file and run './dev docs'. -->\n\n";

// --- pieces of Markdown ---

// Removes and returns the text up to the next `separator`, or all of it.
std::string_view takePart(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

std::string pageOf(const MessageExplanation& message) {
  return message.rule.empty() ? std::string(failuresFile) : fmt::format("{}.md", message.rule);
}

// The anchor of the heading that is the message's id.
std::string anchorOf(const MessageExplanation& message) {
  std::string anchor;
  for (const char c : message.id) {
    const auto unit = static_cast<unsigned char>(c);
    if (std::isalnum(unit) != 0 || c == '_') anchor += static_cast<char>(std::tolower(unit));
  }
  return anchor;
}

std::string linkTo(const MessageExplanation& message, std::string_view shown) {
  return fmt::format("[`{}`]({}#{})", shown, pageOf(message), anchorOf(message));
}

// Source code within a sentence. A message's id becomes a link to its explanation.
std::string codeSpan(std::string_view code) {
  const MessageExplanation* message = findMessageExplanation(code);
  return message != nullptr ? linkTo(*message, code) : fmt::format("`{}`", code);
}

// The words of a text. Source code in backticks is one word.
std::vector<std::string> wordsOf(std::string_view text) {
  const std::string_view whole = text;
  std::vector<std::string> words(1);
  while (!text.empty()) {
    const char c = text.front();
    text.remove_prefix(1);
    if (c == ' ') {
      words.emplace_back();
    } else if (c != '`') {
      words.back() += c;
    } else if (text.find('`') == std::string_view::npos) {
      throw std::runtime_error(fmt::format("a backtick has no counterpart in: {}", whole));
    } else {
      words.back() += codeSpan(takePart(text, '`'));
    }
  }
  return words;
}

// The text wrapped into lines. All lines but the first are indented.
std::string wrap(std::string_view text, std::string_view indent = "") {
  std::string result;
  std::string line;
  for (const std::string& word : wordsOf(text)) {
    if (!line.empty() && line.size() + 1 + word.size() > lineWidth) {
      result += line + '\n';
      line = indent;
    } else if (!line.empty()) {
      line += ' ';
    }
    line += word;
  }
  return result + line + '\n';
}

std::string inOneLine(std::string_view text) {
  std::string line;
  for (const std::string& word : wordsOf(text)) line += line.empty() ? word : ' ' + word;
  return line;
}

// A Markdown list of the points, which are the lines of the text.
std::string points(std::string_view lines) {
  std::string list;
  while (!lines.empty()) list += wrap(fmt::format("- {}", takePart(lines, '\n')), "  ");
  return list + '\n';
}

std::string beforeAndAfter(std::string_view before, std::string_view after) {
  return fmt::format("Before:\n\n```\n{}\n```\n\nAfter:\n\n```\n{}\n```\n\n", before, after);
}

// --- sections ---

std::string messageSection(const MessageExplanation& message) {
  return fmt::format("### {}\n\n> {}\n\n", message.id, message.text) + wrap(message.meaning) +
         '\n' + wrap(fmt::format("**Cause:** {}", message.cause)) + '\n' +
         wrap(fmt::format("**Remedy:** {}", message.fix)) + '\n' +
         beforeAndAfter(message.before, message.after);
}

// The explanations of the messages of the rule family, or of those without one.
std::string messageSections(std::span<const MessageExplanation> messages, std::string_view rule) {
  std::string sections;
  for (const MessageExplanation& message : messages) {
    if (message.rule == rule) sections += messageSection(message);
  }
  return sections;
}

std::string conversionTable(const RuleExplanation& rule) {
  std::string table = "| Old form | What becomes of it |\n|---|---|\n";
  for (const ConversionExplanation& conversion : rule.conversions) {
    table += fmt::format("| {} | {} |\n", inOneLine(conversion.from), inOneLine(conversion.to));
  }
  return table + '\n';
}

std::string messageRows(std::span<const MessageExplanation> messages) {
  std::string rows;
  for (const MessageExplanation& message : messages) {
    rows += fmt::format("| {} | {} | {} |\n", linkTo(message, message.id), kindName(message.kind),
                        message.text);
  }
  return rows;
}

// --- pages ---

// Ends the page with one line end.
RulePage makePage(std::string_view fileName, std::string text) {
  text.resize(text.find_last_not_of('\n') + 1);
  return {std::string(fileName), std::string(header) + text + '\n'};
}

RulePage makeFamilyPage(const RuleExplanation& rule) {
  std::string text =
      fmt::format("# {}\n\n", rule.title) + wrap(rule.summary) + '\n' +
      wrap(fmt::format("`soca update --rules {}` updates with this family alone.", rule.id)) +
      "\n## What is converted\n\n" + conversionTable(rule) + points(rule.details) +
      beforeAndAfter(rule.before, rule.after) + "## Limits\n\n" + points(rule.limits) +
      "## What is reported\n\n";
  const std::string sections = messageSections(messageExplanations(), rule.id);
  text += sections.empty()
              ? "This family has no messages: what it doesn't convert, it leaves alone.\n"
              : wrap(
                    "These findings stand beside the changes of a class, and what they speak of "
                    "stays as it was unless they say otherwise. `{0}` and `{1}` stand for names.") +
                    '\n' + sections;
  return makePage(fmt::format("{}.md", rule.id), text);
}

RulePage makeFailuresPage() {
  std::string text =
      "# Failures\n\n" +
      wrap(
          "A failure ends the work on a class: its file stays as it is, and the program goes on "
          "with the other classes.") +
      '\n' +
      wrap(
          "A conversion with a wrong result is not a failure of its class: it is left out for one "
          "of the reasons below, and the others are made. The limits of each family list where "
          "that can happen. Only with `--as-service` the whole class is refused.") +
      "\n## Failures of an update\n\n" + wrap("`{0}` stands for the name of a class or a file.") +
      '\n';
  text += messageSections(messageExplanations(), "");
  text += "## Failures that the program finds\n\n" + messageSections(programExplanations(), "");
  return makePage(failuresFile, text);
}

RulePage makeIndexPage() {
  std::string text = "# Rules\n\n" +
                     wrap(
                         "What an update converts, and what it says of what it can't. The "
                         "families run in this order.") +
                     "\n| Family | What it does |\n|---|---|\n";
  for (const RuleExplanation& rule : ruleExplanations()) {
    text += fmt::format("| [{0}]({0}.md) | {1} |\n", rule.id, inOneLine(rule.summary));
  }
  text += "\n## Messages\n\n" +
          wrap(
              "A finding is reported beside the changes of a class. An error leaves the class as "
              "it is. A reason is why a conversion is not safe or "
              "[not made](../conversions.md#what-is-left-out-and-what-to-do), or why a class is "
              "left as it is. In JSON and SARIF, the ids of an update begin with the name of the "
              "catalog, as in `VELUM:system:Analyzer:SyntaxError`. `soca explain` prints all this "
              "too, with the name of a family or an id as its argument.") +
          "\n| Message | Kind | Text |\n|---|---|---|\n" + messageRows(messageExplanations()) +
          messageRows(programExplanations());
  return makePage(indexFile, text);
}

}  // namespace

std::vector<RulePage> makeRulePages() {
  std::vector<RulePage> pages{makeIndexPage()};
  for (const RuleExplanation& rule : ruleExplanations()) pages.push_back(makeFamilyPage(rule));
  pages.push_back(makeFailuresPage());
  return pages;
}

}  // namespace soca
