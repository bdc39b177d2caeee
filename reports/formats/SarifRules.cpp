#include "reports/formats/SarifRules.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>
#include <span>
#include <utility>

#include "reports/explanations/MessageExplanations.h"
#include "reports/explanations/ProgramMessages.h"
#include "rules/RuleFamilies.h"

namespace soca {
namespace {

using Json = nlohmann::ordered_json;

std::vector<const MessageExplanation*> explanationsOf(MessageKindType kind) {
  std::vector<const MessageExplanation*> chosen;
  const auto choose = [&](std::span<const MessageExplanation> explanations) {
    for (const MessageExplanation& each : explanations) {
      if (each.kind == kind) chosen.push_back(&each);
    }
  };
  choose(messageExplanations());
  choose(programExplanations());
  return chosen;
}

// What explains why a class or a conversion is left as it is: the reasons, and then the failures.
const std::vector<const MessageExplanation*>& leftAsItIs() {
  static const auto explanations = [] {
    auto all = explanationsOf(MessageKindType::reason);
    std::ranges::copy(explanationsOf(MessageKindType::error), std::back_inserter(all));
    return all;
  }();
  return explanations;
}

std::string beforeAndAfter(std::string_view before, std::string_view after) {
  return fmt::format("Before:\n\n```\n{}\n```\n\nAfter:\n\n```\n{}\n```\n", before, after);
}

// The text as plain text and as Markdown.
Json helpOf(const std::string& text, std::string_view before, std::string_view after) {
  const std::string markdown = fmt::format("{}\n\n{}", text, beforeAndAfter(before, after));
  return {{"text", fmt::format("{}\n\nBefore:\n\n{}\n\nAfter:\n\n{}\n", text, before, after)},
          {"markdown", markdown}};
}

std::string listOf(std::string_view lines) {
  std::string list;
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    list += fmt::format("\n- {}", lines.substr(0, end));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  return list;
}

Json ruleOf(const RuleExplanation& rule) {
  Json texts = Json::object();
  for (const ConversionText& each : rule.texts) texts[each.id] = {{"text", each.text}};
  const std::string help =
      fmt::format("{}\n{}\n\nLimits:\n{}", rule.summary, listOf(rule.details), listOf(rule.limits));
  return {{"id", rule.id},
          {"name", rule.name},
          {"shortDescription", {{"text", fmt::format("{}.", rule.title)}}},
          {"fullDescription", {{"text", rule.summary}}},
          {"messageStrings", std::move(texts)},
          {"defaultConfiguration", {{"level", "note"}}},
          {"help", helpOf(help, rule.before, rule.after)}};
}

// Removes `_`; the first letter and each letter after a `_` become capitals.
std::string nameOf(const MessageExplanation& message) {
  std::string name;
  bool isStart = true;
  for (const char c : message.id.substr(message.id.rfind(':') + 1)) {
    if (c == '_') {
      isStart = true;
      continue;
    }
    name += isStart && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    isStart = false;
  }
  return name;
}

Json ruleOf(const MessageExplanation& message, std::string_view level) {
  const std::string help =
      fmt::format("{}\n\nCause: {}\n\nRemedy: {}", message.meaning, message.cause, message.fix);
  return {{"id", message.fullId},
          {"name", nameOf(message)},
          {"shortDescription", {{"text", message.text}}},
          {"fullDescription", {{"text", message.meaning}}},
          {"messageStrings", {{"default", {{"text", message.text}}}}},
          {"defaultConfiguration", {{"level", level}}},
          {"help", helpOf(help, message.before, message.after)}};
}

Json messageOf(std::string_view id, const std::string& text,
               const std::vector<std::string>& arguments) {
  Json message = {{"id", id}, {"text", text}};
  if (!arguments.empty()) message["arguments"] = arguments;
  return message;
}

}  // namespace

Json sarifTool(bool asService) {
  Json rules = Json::array();
  for (const RuleFamily& family : ruleFamilies) {
    rules.push_back(ruleOf(*findRuleExplanation(family.name)));
  }
  for (const auto* message : explanationsOf(MessageKindType::finding)) {
    rules.push_back(ruleOf(*message, "warning"));
  }
  if (!asService) {
    for (const auto* message : leftAsItIs()) {
      rules.push_back(
          ruleOf(*message, message->kind == MessageKindType::error ? "error" : "warning"));
    }
  }
  Json notifications = Json::array();
  for (const auto* message : explanationsOf(MessageKindType::error)) {
    notifications.push_back(ruleOf(*message, "error"));
  }
  return {{"driver",
           {{"name", "soca"},
            {"version", SOCA_VERSION},
            {"semanticVersion", SOCA_VERSION},
            {"language", "en"},
            {"rules", std::move(rules)},
            {"notifications", std::move(notifications)}}}};
}

Json sarifResult(const Conversion& conversion) {
  const ConversionKind& kind = conversionKind(conversion.kind);
  const auto texts = findRuleExplanation(ruleFamily(kind.family).name)->texts;
  const auto text = std::ranges::find(texts, conversion.message, &ConversionText::id);
  return {
      {"ruleId", kind.name},
      {"ruleIndex", static_cast<std::size_t>(kind.family)},
      {"level", "note"},
      {"message", messageOf(conversion.message, fillPlaceholders(text->text, conversion.arguments),
                            conversion.arguments)}};
}

Json sarifResult(const Finding& finding, const std::string& text) {
  static const auto explanations = explanationsOf(MessageKindType::finding);
  const auto known = std::ranges::find(explanations, finding.id, &MessageExplanation::id);
  return {
      {"ruleId", (*known)->fullId},
      {"ruleIndex", ruleFamilies.size() + static_cast<std::size_t>(known - explanations.begin())},
      {"level", "warning"},
      {"message", messageOf("default", text, finding.arguments)}};
}

Json sarifResult(std::string_view fullId, std::string_view level, std::string text) {
  static const auto findings = explanationsOf(MessageKindType::finding);
  const auto& all = leftAsItIs();
  const auto known = std::ranges::find(all, fullId, &MessageExplanation::fullId);
  Json result = {{"ruleId", fullId}};
  if (known != all.end()) {
    result["ruleIndex"] =
        ruleFamilies.size() + findings.size() + static_cast<std::size_t>(known - all.begin());
  }
  result["level"] = level;
  result["message"] = {{"text", std::move(text)}};
  return result;
}

std::optional<Json> sarifDescriptor(std::string_view fullId) {
  static const auto explanations = explanationsOf(MessageKindType::error);
  const auto known = std::ranges::find(explanations, fullId, &MessageExplanation::fullId);
  if (known == explanations.end()) return std::nullopt;
  return Json{{"id", fullId}, {"index", known - explanations.begin()}};
}

}  // namespace soca
