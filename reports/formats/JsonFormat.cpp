// An update as a JSON document.
//
//   {"version": 1,
//    "results": [{"class": "a.B", "file": "/abs/a/B.vlm", "updated": true, "text": "...",
//                 "messages": ["..."]}],
//    "errors": [{"class": "a.C", "id": "VELUM:system:Analyzer:SyntaxError", "message": "...",
//                "diagnostics": [{"line": 3, "column": 5, "message": "..."}], "hint": "..."}],
//    "undecided": [{"class": "a.E", "id": "...", "message": "...", "missing": ["..."],
//                   "hint": "..."}],
//    "skipped": [{"class": "a.D", "id": "...", "message": "...", "hint": "..."}]}
//
// The answers of the service have no `undecided`. Where nothing is written because the roots of the
// class path are wrong, there is a key more: "suggestedRoots": ["/abs/src"].
//
// With `--edits` a result has four more keys: the checksum of the current file, the single
// replacements in it, in the order of the file, the conversions that they make, and the messages
// with their places. Offsets and lengths are bytes of that file.
//
//    "sha256": "9f86...", "edits": [{"offset": 120, "length": 4, "text": "..."}],
//    "conversions": [{"id": "a.B#impl/rename:f", "kinds": ["impl/rename"], "member": "f",
//                     "line": 3, "column": 5}],
//    "findings": [{"id": "VELUM:system:Analyzer:LegacyImplReferenced", "subject": "f",
//                  "message": "...", "line": 3, "column": 5, "endColumn": 26,
//                  "related": [{"line": 9, ..., "message": "..."}]}]
//
// Lines and columns are one-based; columns count UTF-16 code units. `hint` is optional; a refused
// result has the reason under `refused`.
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"
#include "reports/explanations/MessageExplanations.h"

namespace soca {
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

// A byte order mark is not counted in the columns of the first line.
Json conversionOf(const Conversion& conversion, bool hasByteOrderMark) {
  const SourcePosition& start = conversion.place.start;
  Json json = {{"id", conversion.id},
               {"kinds", Json::array({conversionKind(conversion.kind).name})}};
  if (!conversion.member.empty()) json["member"] = conversion.member;
  json["line"] = start.line + 1;
  json["column"] = start.column + (hasByteOrderMark && start.line == 0 ? 0 : 1);
  return json;
}

Json placeOf(const LinePlace& place) {
  Json json = {{"line", place.line}, {"column", place.column}};
  if (place.endLine > place.line) json["endLine"] = place.endLine;
  json["endColumn"] = place.endColumn;
  return json;
}

// The service does not name the subject apart from the message.
Json findingOf(const Finding& finding, bool asService) {
  Json json;
  if (const auto* known = findMessageExplanation(finding.id)) json["id"] = known->fullId;
  if (!asService && !finding.arguments.empty()) json["subject"] = finding.arguments.front();
  json["message"] = finding.text;
  json.update(placeOf(finding));
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

// Results are printed at once; errors and skipped classes are stored until the end.
class JsonReport : public UpdateReport {
 public:
  // Both must outlive the report.
  JsonReport(const ReportOptions* options, ReportOutput* output)
      : options_(options), output_(output) {}

  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override;
  void printNotes(const ClassOutcome&) override {}
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void addUndecided(const Failure& failure) override;
  void addSuggestion(const SuggestedRoots& suggestion, const std::string&) override {
    suggestedRoots_ = suggestion.roots;
  }
  void finish(ExitCodeType exitCode) override;

 private:
  void beginResults();

  const ReportOptions* options_;
  ReportOutput* output_;
  bool hasBegun_ = false;
  bool hasResults_ = false;
  SpooledList errors_;
  SpooledList undecided_;
  SpooledList skipped_;
  std::vector<std::string> suggestedRoots_;
};

std::string JsonReport::dataOf(const ClassOutcome& outcome) const {
  const Json head = {{"class", outcome.update.className}, {"file", outcome.update.file}};
  std::string text = dump(head);
  text.pop_back();
  const auto add = [&](std::string_view key, const std::string& value) {
    text.append(",\"").append(key).append("\":").append(value);
  };
  add("updated", dump(outcome.update.updated));
  add("text", dump(outcome.text));
  add("messages",
      dumpList(outcome.update.findings, [](const Finding& finding) { return Json(finding.text); }));
  if (outcome.file.bytes) {
    add("sha256", dump(outcome.file.bytes->sha256));
    add("edits", dumpList(outcome.file.edits.edits, editOf));
    add("conversions", dumpList(outcome.file.conversions, [&](const Conversion& conversion) {
          return conversionOf(conversion, outcome.file.bytes->hasByteOrderMark);
        }));
    add("findings", dumpList(outcome.update.findings, [&](const Finding& finding) {
          return findingOf(finding, options_->asService);
        }));
  }
  if (!outcome.hints.empty()) add("hint", dump(joinHints(outcome.hints)));
  if (outcome.update.isRefused()) add("refused", dump(outcome.update.refusal));
  return text += '}';
}

void JsonReport::printData(const std::string& data) {
  beginResults();
  output_->print(hasResults_ ? ",\n  " : "\n  ");
  output_->print(data);
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

void JsonReport::addUndecided(const Failure& failure) {
  Json json = headOf(failure);
  for (const Ancestry::Missing& missing : failure.missing) json["missing"].push_back(missing.name);
  addHint(failure.hints, json);
  undecided_.add(dump(json));
}

void JsonReport::finish(ExitCodeType) {
  beginResults();
  output_->print("],\n \"errors\": ");
  errors_.print(*output_);
  if (!options_->asService) {
    output_->print(",\n \"undecided\": ");
    undecided_.print(*output_);
  }
  output_->print(",\n \"skipped\": ");
  skipped_.print(*output_);
  if (!suggestedRoots_.empty()) {
    output_->print(",\n \"suggestedRoots\": " + dump(suggestedRoots_));
  }
  output_->print("}\n");
}

void JsonReport::beginResults() {
  if (hasBegun_) return;
  output_->print("{\"version\": 1,\n \"results\": [");
  hasBegun_ = true;
}

OutcomeNeeds needsOf(const ReportOptions& options) {
  OutcomeNeeds needs{
      .text = true, .hints = true, .edits = options.edits, .conversions = options.edits};
  if (needs.edits) needs.places = FindingPlacesType::related;
  return needs;
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<JsonReport>(context.options, context.output);
}

}  // namespace

extern const ReportFormat jsonFormat;
constinit const ReportFormat jsonFormat = {
    .name = "json",
    .description = "prints one document with results, errors and skipped classes, for programs",
    .isForPeople = false,
    .takesEdits = true,
    .whyNotWritten = {},
    .needs = needsOf,
    .make = makeReport};

}  // namespace soca
