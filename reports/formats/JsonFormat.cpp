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
// Where nothing is written because the roots of the class path are wrong, there is a key more:
// "suggestedRoots": ["/abs/src"]. If conversions were selected that are not found, it is
// "notFound": [{"id": "a.B#mixins", "message": "..."}].
//
// A result has the conversions of the class, made or left out, and the messages with their places:
//
//    "conversions": [{"id": "a.B#impl/rename:f", "kinds": ["impl/rename"], "member": "f",
//                     "risk": "unsafe", "reasons": [...], "made": false, "leftOut": {...},
//                     "pass": 0, "needs": [], "defaultKnown": true, "line": 3, "column": 5}],
//    "findings": [{"id": "VELUM:system:Analyzer:LegacyImplReferenced", "subject": "f",
//                  "message": "...", "detail": "referred to in line 9",
//                  "line": 3, "column": 5, "endColumn": 26,
//                  "related": [{"line": 9, ..., "message": "..."}]}]
//
// and, if lines were laid apart for the conversion, their numbers, "laidApart": [12, 14],
// where a reason, also the one in `leftOut`, is
//
//    {"id": "soca:StillReferenced", "message": "...", "detail": "...",
//     "related": [{"line": 9, ..., "message": "..."}]}
//
// With `--edits` there are two more keys: the checksum of the current file, and the single
// replacements in it, in the order of the file, with the ids of the conversions that make them.
// Offsets and lengths are bytes of that file.
//
//    "sha256": "9f86...",
//    "edits": [{"offset": 120, "length": 4, "text": "...", "conversions": ["a.B#impl/rename:f"]}]
//
// Lines and columns are one-based; columns count UTF-16 code units without a byte order mark. They
// are those of the text as it was read. `hint` is optional.
//
// The answers of the service have no `undecided`, and conversions and findings only with `--edits`,
// in an older form; a refused result has the reason under `refused`.
#include <fmt/core.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"
#include "reports/explanations/MessageExplanations.h"
#include "reports/outcomes/ConversionText.h"

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

// --- the parts of a result ---

// What is printed of one class: its outcome, in the form for the options.
class ResultParts {
 public:
  ResultParts(const ClassOutcome& outcome, const ReportOptions& options)
      : outcome_(outcome),
        asService_(options.asService),
        hasMark_(outcome.update.hasByteOrderMark) {}

  Json editOf(const FileEdit& edit) const {
    Json json = {{"offset", edit.offset}, {"length", edit.length}, {"text", edit.text}};
    if (asService_) return json;
    json["conversions"] = Json::array();
    for (const std::size_t index : edit.conversions) {
      json["conversions"].push_back(outcome_.update.conversions[index].id);
    }
    return json;
  }

  Json conversionOf(const Conversion& conversion) const {
    const SourcePosition& start = conversion.place.start;
    Json json = {{"id", conversion.id},
                 {"kinds", Json::array({conversionKind(conversion.kind).name})}};
    if (!conversion.member.empty()) json["member"] = conversion.member;
    if (!asService_) addDecision(conversion, json);
    json["line"] = start.line + 1;
    json["column"] = start.column + (hasMark_ && start.line == 0 ? 0 : 1);
    return json;
  }

  // The service does not name the subject apart from the message.
  Json findingOf(const Finding& finding) const {
    Json json;
    if (const auto* known = findMessageExplanation(finding.id)) json["id"] = known->fullId;
    if (!asService_ && !finding.arguments.empty()) json["subject"] = finding.arguments.front();
    json["message"] = finding.text;
    if (!asService_) {
      const std::string detail = detailOf(finding, LinesType::old);
      if (!detail.empty()) json["detail"] = detail;
    }
    json.update(placeOf(finding));
    addRelated(finding.related, json);
    return json;
  }

 private:
  void addDecision(const Conversion& conversion, Json& json) const {
    json["risk"] = riskName(conversion.risk.type);
    json["reasons"] = Json::array();
    for (const ConversionReason& reason : conversion.risk.reasons) {
      json["reasons"].push_back(reasonOf(
          reason,
          fmt::format("{}: {}", subjectOf(conversion), describeReason(reason, LinesType::old))));
    }
    json["made"] = conversion.isMade();
    if (conversion.leftOut) {
      Json leftOut = reasonOf(*conversion.leftOut,
                              describeLeftOut(conversion, *conversion.leftOut, LinesType::old));
      // What is no risk is a reason too.
      const bool isRisk = std::ranges::any_of(
          conversion.risk.reasons,
          [&](const ConversionReason& each) { return each.id == conversion.leftOut->id; });
      if (!isRisk) json["reasons"].push_back(leftOut);
      json["leftOut"] = std::move(leftOut);
    }
    json["pass"] = conversion.isMade() ? conversion.pass : 0;
    json["needs"] = conversion.needs;
    if (const ConversionReason* layout = conversion.findLaidApart()) {
      for (const RelatedPlace& place : layout->places) json["laidApart"].push_back(place.line);
    }
    json["defaultKnown"] = conversion.risk.isDefaultKnown;
  }

  Json reasonOf(const ConversionReason& reason, const std::string& message) const {
    Json json = {{"id", reason.id}, {"message", message}, {"detail", reason.detail}};
    addRelated(reason.places, json);
    return json;
  }

  void addRelated(const std::vector<RelatedPlace>& places, Json& json) const {
    for (const RelatedPlace& place : places) {
      json["related"].push_back(placeOf(place));
      json["related"].back()["message"] = place.text;
    }
  }

  // A byte order mark is not counted, except in the answers of the service.
  std::uint64_t columnOf(std::uint64_t line, std::uint64_t column) const {
    return !asService_ && hasMark_ && line == 1 && column > 1 ? column - 1 : column;
  }

  Json placeOf(const LinePlace& place) const {
    Json json = {{"line", place.line}, {"column", columnOf(place.line, place.column)}};
    if (place.endLine > place.line) json["endLine"] = place.endLine;
    json["endColumn"] = columnOf(place.endLine, place.endColumn);
    return json;
  }

  const ClassOutcome& outcome_;
  bool asService_;
  bool hasMark_;
};

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
  std::string notesOf(const ClassOutcome&) const override { return {}; }
  void printNotes(const std::string&) override {}
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void addUndecided(const Failure& failure) override;
  void addSuggestion(const SuggestedRoots& suggestion, const std::string&) override {
    suggestedRoots_ = suggestion.roots;
  }
  void addNotFound(const std::string& id, const std::string& reason) override {
    hasNotFound_ = true;
    notFound_.add(dump({{"id", id}, {"message", reason}}));
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
  SpooledList notFound_;
  bool hasNotFound_ = false;
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
  const ResultParts parts(outcome, *options_);
  if (options_->edits && outcome.file.bytes) {
    add("sha256", dump(outcome.file.bytes->sha256));
    add("edits",
        dumpList(outcome.file.edits, [&](const FileEdit& edit) { return parts.editOf(edit); }));
  }
  if (options_->edits || !options_->asService) {
    add("conversions", dumpList(outcome.update.conversions,
                                [&](const Conversion& each) { return parts.conversionOf(each); }));
    add("findings", dumpList(outcome.update.findings,
                             [&](const Finding& each) { return parts.findingOf(each); }));
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
  if (hasNotFound_) {
    output_->print(",\n \"notFound\": ");
    notFound_.print(*output_);
  }
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
  const bool hasDetails = options.edits || !options.asService;
  OutcomeNeeds needs{
      .text = true, .hints = true, .edits = options.edits, .conversions = hasDetails};
  if (hasDetails) needs.places = FindingPlacesType::related;
  return needs;
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<JsonReport>(context.options, context.output);
}

}  // namespace

extern const ReportFormat jsonFormat;
extern const ReportFormat selectionFormat;
constinit const ReportFormat jsonFormat = {
    .name = "json",
    .description = "prints one document with results, errors and skipped classes, for programs",
    .isForPeople = false,
    .takesEdits = true,
    .isForService = true,
    .whyNotWritten = {},
    .needs = needsOf,
    .make = makeReport,
    .list = &selectionFormat};

}  // namespace soca
