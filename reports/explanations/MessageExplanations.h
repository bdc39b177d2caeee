// The meaning of the messages and the conversions of the rules, as texts for users. All texts are
// UTF-8 and live as long as the process; the lines of a text are separated by "\n", with none at
// the end. Source code within a sentence is enclosed in backticks; the catalog's texts have none.
#pragma once

#include <span>
#include <string_view>

namespace soca {

// Whether a message ends the work on a class, accompanies its result, or is the program's reason to
// leave the class as it is, or why a conversion is not safe or not made.
enum class MessageKindType { error, finding, reason };

// As users read it.
std::string_view kindName(MessageKindType kind);

struct MessageExplanation {
  // "VELUM:system:Analyzer"; empty for a message of the program itself.
  std::string_view catalog;
  // The short id. A message of the program itself has its full id here.
  std::string_view id;
  // The catalog, a colon and the short id.
  std::string_view fullId;
  MessageKindType kind;
  // The rule family that reports it, as in RuleExplanation::id; empty if there is none.
  std::string_view rule;
  // The catalog's text with its placeholders, `{0}` and `{1}`.
  std::string_view text;
  // What it means, why it occurs, and how to correct it by hand.
  std::string_view meaning;
  std::string_view cause;
  std::string_view fix;
  // A piece of class source that causes it, and the same after the fix.
  std::string_view before;
  std::string_view after;
};

// An old form, and the form that replaces it.
struct ConversionExplanation {
  std::string_view from;
  std::string_view to;
};

// The message for one place that a family converts. The text has placeholders like those of
// messages.
struct ConversionText {
  std::string_view id;
  std::string_view text;
};

// One rule family.
struct RuleExplanation {
  // The name on the command line, such as "attributes".
  std::string_view id;
  // As other tools show it: letters only, each word with a capital.
  std::string_view name;
  // At least one.
  std::span<const ConversionText> texts;
  std::string_view title;
  // One sentence.
  std::string_view summary;
  std::span<const ConversionExplanation> conversions;
  // When and how it converts, one point a line.
  std::string_view details;
  // What it leaves unchanged, gets wrong or refuses, one point a line.
  std::string_view limits;
  std::string_view before;
  std::string_view after;
};

// The messages of the catalog, failures first.
std::span<const MessageExplanation> messageExplanations();

// The messages of the program itself, which are not in the catalog.
std::span<const MessageExplanation> programExplanations();

std::span<const RuleExplanation> ruleExplanations();

// The explanation of a short or a full id, of the catalog or the program; null for any other.
const MessageExplanation* findMessageExplanation(std::string_view id);

const RuleExplanation* findRuleExplanation(std::string_view id);

}  // namespace soca
