#include "cli/JsonFormat.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/messages/MessageExplanations.h"

namespace soca::cli {
namespace {

using Json = nlohmann::ordered_json;

// In one line. What is no UTF-8 can't come here, but must not end the run either.
std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json editsOf(const ClassOutcome& outcome) {
  Json list = Json::array();
  for (const FileEdit& edit : outcome.edits.edits) {
    list.push_back({{"offset", edit.offset}, {"length", edit.length}, {"text", edit.text}});
  }
  return list;
}

Json placeOf(const LinePlace& place) {
  return {{"line", place.line}, {"column", place.column}, {"endColumn", place.endColumn}};
}

Json findingsOf(const ClassOutcome& outcome) {
  Json list = Json::array();
  for (const Finding& finding : outcome.findings) {
    Json json;
    if (const auto* known = fl::i18n::findMessageExplanation(finding.id))
      json["id"] = known->fullId;
    json["message"] = finding.text;
    if (finding.line != 0) json.update(placeOf(finding));
    Json related = Json::array();
    for (const RelatedPlace& place : finding.related) {
      related.push_back(placeOf(place));
      related.back()["message"] = place.text;
    }
    if (!related.empty()) json["related"] = std::move(related);
    list.push_back(std::move(json));
  }
  return list;
}

std::string joinHints(const std::vector<std::string>& hints) {
  std::string text;
  for (const std::string& hint : hints) {
    if (!text.empty()) text += '\n';
    text += hint;
  }
  return text;
}

void addHint(const std::vector<std::string>& hints, Json& json) {
  if (!hints.empty()) json["hint"] = joinHints(hints);
}

Json diagnosticsOf(const Failure& failure) {
  Json list = Json::array();
  for (const ca::Diagnostic& diagnostic : failure.diagnostics) {
    list.push_back({{"line", diagnostic.line + 1},
                    {"column", diagnostic.column + 1},
                    {"message", diagnostic.message}});
  }
  return list;
}

Json headOf(const Failure& failure) {
  return {{"class", failure.className}, {"id", failure.id}, {"message", failure.message}};
}

}  // namespace

std::string JsonReport::dataOf(const ClassOutcome& outcome) const {
  Json messages = Json::array();
  for (const Finding& finding : outcome.findings) messages.push_back(finding.text);
  Json json = {{"class", outcome.className},
               {"file", outcome.file},
               {"updated", outcome.updated},
               {"text", outcome.text},
               {"messages", std::move(messages)}};
  if (outcome.bytes) {
    json["sha256"] = outcome.bytes->sha256;
    json["edits"] = editsOf(outcome);
    json["findings"] = findingsOf(outcome);
  }
  addHint(outcome.hints, json);
  if (outcome.isRefused()) json["refused"] = outcome.refusal;
  return dump(json);
}

void JsonReport::printData(const std::string& data) {
  beginResults();
  console_->print(hasResults_ ? ",\n  " : "\n  ");
  console_->print(data);
  hasResults_ = true;
}

void JsonReport::addFailure(const Failure& failure) {
  Json json = headOf(failure);
  json["diagnostics"] = diagnosticsOf(failure);
  addHint(failure.hints, json);
  errors_.add(dump(json));
}

void JsonReport::addSkipped(const Failure& failure) {
  Json json = headOf(failure);
  addHint(failure.hints, json);
  skipped_.add(dump(json));
}

void JsonReport::finish(ExitCodeType) {
  beginResults();
  console_->print("],\n \"errors\": ");
  errors_.print(*console_);
  console_->print(",\n \"skipped\": ");
  skipped_.print(*console_);
  console_->print("}\n");
}

void JsonReport::beginResults() {
  if (hasBegun_) return;
  console_->print("{\"version\": 1,\n \"results\": [");
  hasBegun_ = true;
}

}  // namespace soca::cli
