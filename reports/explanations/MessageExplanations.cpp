#include "reports/explanations/MessageExplanations.h"

#include <algorithm>

#include "ExplanationTable.h"

namespace soca {
namespace {

const MessageExplanation* findIn(std::span<const MessageExplanation> entries, std::string_view id) {
  const auto entry =
      std::find_if(entries.begin(), entries.end(), [id](const MessageExplanation& candidate) {
        return id == candidate.id || id == candidate.fullId;
      });
  return entry == entries.end() ? nullptr : &*entry;
}

}  // namespace

std::string_view kindName(MessageKindType kind) {
  switch (kind) {
    case MessageKindType::error:
      return "error";
    case MessageKindType::finding:
      return "finding";
    case MessageKindType::reason:
      break;
  }
  return "reason";
}

std::span<const MessageExplanation> messageExplanations() { return messageTable; }

std::span<const MessageExplanation> programExplanations() { return programTable; }

std::span<const RuleExplanation> ruleExplanations() { return ruleTable; }

const MessageExplanation* findMessageExplanation(std::string_view id) {
  const MessageExplanation* entry = findIn(messageTable, id);
  return entry != nullptr ? entry : findIn(programTable, id);
}

const RuleExplanation* findRuleExplanation(std::string_view id) {
  const auto rule = std::find_if(ruleTable.begin(), ruleTable.end(),
                                 [id](const RuleExplanation& entry) { return entry.id == id; });
  return rule == ruleTable.end() ? nullptr : &*rule;
}

}  // namespace soca
