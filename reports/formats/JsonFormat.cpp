#include "reports/formats/JsonFormat.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "reports/explanations/MessageExplanations.h"

namespace soca::cli {
namespace {

using Json = nlohmann::ordered_json;

// In one line. Text that is not UTF-8 is not expected, but must not end the run.
std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The values that `valueOf` makes of the items, as an array. Printed one by one, because a JSON
// tree of a million values takes ten times as much memory as their text.
template <class Items, class ValueOf>
std::string dumpList(const Items& items, const ValueOf& valueOf) {
  std::string text = "[";
  for (const auto& item : items) {
    if (text.size() > 1) text += ',';
    text += dump(valueOf(item));
  }
  return text += ']';
}

Json editOf(const FileEdit& edit) {
  return {{"offset", edit.offset}, {"length", edit.length}, {"text", edit.text}};
}

Json placeOf(const LinePlace& place) {
  return {{"line", place.line}, {"column", place.column}, {"endColumn", place.endColumn}};
}

Json findingOf(const Finding& finding) {
  Json json;
  if (const auto* known = fl::i18n::findMessageExplanation(finding.id)) json["id"] = known->fullId;
  json["message"] = finding.text;
  if (finding.line != 0) json.update(placeOf(finding));
  Json related = Json::array();
  for (const RelatedPlace& place : finding.related) {
    related.push_back(placeOf(place));
    related.back()["message"] = place.text;
  }
  if (!related.empty()) json["related"] = std::move(related);
  return json;
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
  const Json head = {{"class", outcome.className}, {"file", outcome.file}};
  std::string text = dump(head);
  text.pop_back();
  const auto add = [&](std::string_view key, const std::string& value) {
    text.append(",\"").append(key).append("\":").append(value);
  };
  add("updated", dump(outcome.updated));
  add("text", dump(outcome.text));
  add("messages",
      dumpList(outcome.findings, [](const Finding& finding) { return Json(finding.text); }));
  if (outcome.bytes) {
    add("sha256", dump(outcome.bytes->sha256));
    add("edits", dumpList(outcome.edits.edits, editOf));
    add("findings", dumpList(outcome.findings, findingOf));
  }
  if (!outcome.hints.empty()) add("hint", dump(joinHints(outcome.hints)));
  if (outcome.isRefused()) add("refused", dump(outcome.refusal));
  return text += '}';
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
