#include "conversions/Findings.h"

#include <algorithm>
#include <variant>

#include "conversions/FindingPlaces.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

std::string textOf(const std::variant<long, std::string, fl::ustring>& argument) {
  if (const auto* text = std::get_if<fl::ustring>(&argument)) return fl::i18n::to_string(*text);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return std::to_string(std::get<long>(argument));
}

}  // namespace

FindingsListener::FindingsListener()
    : listener_([this](const resource_core::BaseMsgID& message, const fl::ustring& text) {
        messages_.emplace(text, message);
      }) {}

std::vector<Finding> FindingsListener::findingsOf(const PlannedClass& planned,
                                                  FindingPlacesType places) const {
  std::vector<Finding> findings;
  for (const fl::ustring& text : planned.result.messages) {
    Finding& finding = findings.emplace_back();
    finding.text = fl::i18n::to_string(text);
    const auto heard = messages_.find(text);
    if (heard == messages_.end()) continue;
    finding.id = heard->second.id;
    if (places == FindingPlacesType::none) continue;
    std::ranges::transform(heard->second.arguments, std::back_inserter(finding.arguments), textOf);
  }
  if (findings.empty() || places == FindingPlacesType::none) return findings;
  const FindingPlaces finder(*planned.analysis);
  finder.addMembers(findings);
  if (places == FindingPlacesType::related) finder.addRelated(findings);
  return findings;
}

}  // namespace soca
