#include "reports/explanations/Explain.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>

#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"
#include "reports/explanations/MessageExplanations.h"
#include "reports/text/TextLayout.h"

namespace soca {
namespace {

std::string paragraph(std::string_view title, std::string_view text) {
  if (text.empty()) return {};
  return fmt::format("{}:\n{}\n", title, wrap(text, "  "));
}

// Source text with its line ends.
std::string source(std::string_view title, std::string_view text) {
  if (text.empty()) return {};
  std::string result = fmt::format("{}:\n", title);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    result += fmt::format("    {}\n", text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result + '\n';
}

std::string beforeAndAfter(std::string_view before, std::string_view after) {
  std::string text = source("Before", before) + source("After", after);
  text.resize(text.find_last_not_of('\n') + 1);
  return text + '\n';
}

// A list of points, one in each line of the text.
std::string points(std::string_view title, std::string_view lines) {
  std::string result = fmt::format("{}:\n", title);
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    std::string point = wrap(lines.substr(0, end), "    ");
    point[2] = '-';
    result += point;
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  return result + '\n';
}

std::string conversions(const RuleExplanation& rule) {
  std::string result = "Converted:\n";
  for (const ConversionExplanation& conversion : rule.conversions) {
    result += wrap(conversion.from, "  ") + wrap(conversion.to, "      ");
  }
  return result + '\n';
}

std::string explainRule(const RuleExplanation& rule) {
  return fmt::format("{}: {}\n\n", rule.id, rule.title) + wrap(rule.summary, "") + '\n' +
         conversions(rule) + points("In detail", rule.details) + points("Limits", rule.limits) +
         beforeAndAfter(rule.before, rule.after);
}

std::string explainMessage(const MessageExplanation& message) {
  std::string text = fmt::format("{} ({}{}{})\n\n", message.fullId, kindName(message.kind),
                                 message.rule.empty() ? "" : " of the rule ", message.rule);
  text += wrap(message.text, "  ") + '\n';
  text += paragraph("Meaning", message.meaning);
  text += paragraph("Cause", message.cause);
  text += paragraph("Remedy", message.fix);
  return text + beforeAndAfter(message.before, message.after);
}

std::string listOf(std::string_view title, std::span<const MessageExplanation> messages,
                   MessageKindType kind) {
  std::string text;
  for (const MessageExplanation& message : messages) {
    if (message.kind != kind) continue;
    text += fmt::format("  {}\n{}", message.id, wrap(message.text, "      "));
  }
  return text.empty() ? text : fmt::format("\n{}:\n{}", title, text);
}

}  // namespace

std::string explainAll() {
  std::string text = "Rules:\n";
  for (const RuleExplanation& rule : ruleExplanations()) {
    text += fmt::format("  {}\n{}", rule.id, wrap(rule.summary, "      "));
  }
  text += listOf("Findings, which stand beside the changes of a class", messageExplanations(),
                 MessageKindType::finding);
  text +=
      listOf("Errors, which leave a class as it is", messageExplanations(), MessageKindType::error);
  text += listOf("Errors that the program finds", programExplanations(), MessageKindType::error);
  text += listOf("Reasons to leave a class as it is, or to doubt a conversion",
                 programExplanations(), MessageKindType::reason);
  return text + "\n'soca explain ID' says more about one of them.\n";
}

std::vector<std::string_view> explainedIds() {
  std::vector<std::string_view> ids;
  for (const RuleExplanation& rule : ruleExplanations()) ids.push_back(rule.id);
  for (const auto messages : {messageExplanations(), programExplanations()}) {
    for (const MessageExplanation& message : messages) ids.push_back(message.id);
  }
  return ids;
}

std::string explain(std::string_view id) {
  if (const RuleExplanation* rule = findRuleExplanation(id)) return explainRule(*rule);
  if (const MessageExplanation* message = findMessageExplanation(id)) {
    return explainMessage(*message);
  }
  // The full ids of the program's own messages begin with `soca:`.
  if (const auto* message = findMessageExplanation(fmt::format("soca:{}", id))) {
    return explainMessage(*message);
  }
  throw UsageError(fmt::format("there is no rule or message '{}'; 'soca explain' lists them all{}",
                               id, didYouMean(id, explainedIds(), std::identity())));
}

}  // namespace soca
