#include "cli/Findings.h"

#include <variant>

#include "cli/ClassMembers.h"
#include "model/AnalyzerPositions.h"
#include "platform/text/Conversions.h"

namespace soca::cli {
namespace {

// The one-based lines on which the class declares its methods and properties.
using LinesByName = std::unordered_map<fl::ustring_view, std::uint64_t>;

std::uint64_t lineOfNode(const ca::AnalysisResult& analysis, const ca::astapi::Node& node) {
  return makeExtentOfNode(analysis, node).start.line + 1;
}

LinesByName linesOfMembers(const ca::AnalysisResult& analysis) {
  LinesByName lines;
  for (const DeclaredMethod& method : declaredMethods(analysis)) {
    lines.emplace(method.name, lineOfNode(analysis, *method.node->name));
  }
  for (const DeclaredProperty& property : declaredProperties(analysis)) {
    lines.emplace(property.name, lineOfNode(analysis, *property.node));
  }
  return lines;
}

// The line of the member that the message is about, which is its first argument; 0 if there is
// none.
std::uint64_t lineOf(const resource_core::BaseMsgID& message, const LinesByName& lines) {
  if (message.arguments.empty()) return 0;
  const auto* name = std::get_if<fl::ustring>(&message.arguments.front());
  if (name == nullptr) return 0;
  const auto line = lines.find(*name);
  return line == lines.end() ? 0 : line->second;
}

}  // namespace

FindingsListener::FindingsListener()
    : listener_([this](const resource_core::BaseMsgID& message, const fl::ustring& text) {
        messages_.emplace(text, message);
      }) {}

std::vector<Finding> FindingsListener::findingsOf(const PlannedClass& planned) const {
  std::vector<Finding> findings;
  if (planned.result.messages.empty()) return findings;
  const LinesByName lines = linesOfMembers(*planned.analysis);
  for (const fl::ustring& text : planned.result.messages) {
    Finding& finding = findings.emplace_back();
    finding.text = fl::i18n::to_string(text);
    const auto heard = messages_.find(text);
    if (heard == messages_.end()) continue;
    finding.id = heard->second.id;
    finding.line = lineOf(heard->second, lines);
  }
  return findings;
}

}  // namespace soca::cli
