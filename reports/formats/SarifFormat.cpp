// An update as a SARIF 2.1.0 log, for tools that show the results of analyses.
//
// Every conversion that is made is a result, with the edits that make it alone as a fix. A
// conversion that is left out, a finding, and a class that fails or is undecided is a result
// without one. A class that is skipped, and in the log of the service one that fails or is refused,
// is a notification. The log has no times and no names of the machine: the same tree gives the same
// bytes.
#include <fmt/core.h>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/writing/Digest.h"
#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"
#include "reports/formats/SarifLocations.h"
#include "reports/formats/SarifRules.h"
#include "reports/outcomes/ConversionText.h"

namespace soca {
namespace {

using Json = nlohmann::ordered_json;

// The version is part of the name: another computation must have another version.
constexpr const char* fingerprintName = "memberAndRule/v1";

std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The object that names a class, or a member of it.
Json logicalLocationOf(const std::string& className, const std::string& member) {
  if (member.empty()) return {{"fullyQualifiedName", className}, {"kind", "type"}};
  return {{"name", member},
          {"fullyQualifiedName", fmt::format("{}.{}", className, member)},
          {"kind", "member"}};
}

// Identifies the result when lines move: `number` counts equal results of one class.
Json fingerprintsOf(const std::string& key, std::size_t number) {
  const std::string fingerprint = sha256(fmt::format("{}\n{}", key, number));
  return {{fingerprintName, fingerprint.substr(0, 32)}};
}

std::string fingerprintKey(const std::string& className, const Json& result,
                           const std::string& member) {
  return fmt::format("{}\n{}\n{}", className, result.at("ruleId").get_ref<const std::string&>(),
                     member);
}

constexpr std::string_view unresolvedId = "soca:SuperClassUnresolved";

std::string refusalText(const ClassUpdate& update) {
  return fmt::format("The update of class '{}' is refused: {}.", update.className, update.refusal);
}

// The results of one class.
class ClassResults {
 public:
  ClassResults(const ClassOutcome& outcome, Json artifact, bool asService)
      : outcome_(outcome), artifact_(std::move(artifact)), asService_(asService) {}

  std::string make() {
    for (const Conversion& conversion : outcome_.update.conversions) {
      add(conversion.leftOut ? makeLeftOut(conversion, *conversion.leftOut)
                             : makeResult(conversion));
    }
    for (const Finding& finding : outcome_.update.findings) add(makeResult(finding));
    return std::move(text_);
  }

 private:
  void add(const Json& result) {
    if (!text_.empty()) text_ += ",\n  ";
    text_ += dump(result);
  }

  Json makeResult(const Conversion& conversion) {
    Json result = sarifResult(conversion);
    result["locations"] =
        Json::array({locationOf(regionOf(conversion.place, hasMark()), conversion.member)});
    if (const auto* layout = conversion.findLaidApart()) addRelated(layout->places, result);
    addFingerprint(conversion.member, result);
    // The edits of later passes are not those of the current file.
    const bool hasFix = conversion.pass == 1 && !conversion.edits.empty();
    if (hasFix) result["fixes"] = Json::array({fixOf(conversion)});
    return result;
  }

  Json makeLeftOut(const Conversion& conversion, const ConversionReason& reason) {
    std::string text = describeLeftOut(conversion, reason, LinesType::old) + '.';
    const std::string advice = adviceOn(reason);
    if (!advice.empty()) text += ' ' + advice;
    Json result = sarifResult(reason.id, "warning", std::move(text));
    result["locations"] =
        Json::array({locationOf(regionOf(conversion.place, hasMark()), conversion.member)});
    addRelated(reason.places, result);
    addFingerprint(conversion.member, result);
    result["properties"] = {{"conversion", conversion.id},
                            {"risk", riskName(conversion.risk.type)}};
    return result;
  }

  Json makeResult(const Finding& finding) {
    Json result =
        sarifResult(finding, asService_ ? finding.text : describeFinding(finding, LinesType::old));
    const std::string member = finding.arguments.empty() ? "" : finding.arguments.front();
    result["locations"] = Json::array({locationOf(regionOf(finding, hasMark()), member)});
    addRelated(finding.related, result);
    addFingerprint(member, result);
    return result;
  }

  void addRelated(const std::vector<RelatedPlace>& places, Json& result) const {
    for (std::size_t i = 0; i < places.size(); ++i) {
      result["relatedLocations"].push_back(
          {{"id", i + 1},
           {"physicalLocation",
            {{"artifactLocation", artifact_}, {"region", regionOf(places[i], hasMark())}}},
           {"message", {{"text", places[i].text}}}});
    }
  }

  Json locationOf(const Json& region, const std::string& member) const {
    return {
        {"physicalLocation", {{"artifactLocation", artifact_}, {"region", region}}},
        {"logicalLocations", Json::array({logicalLocationOf(outcome_.update.className, member)})}};
  }

  void addFingerprint(const std::string& member, Json& result) {
    const std::string key = fingerprintKey(outcome_.update.className, result, member);
    result["partialFingerprints"] = fingerprintsOf(key, numbers_[key]++);
  }

  Json fixOf(const Conversion& conversion) const {
    Json replacements = Json::array();
    for (const FileEdit& edit : conversion.edits) {
      Json replacement = {{"deletedRegion", regionOf(edit.extent, hasMark())}};
      if (!edit.text.empty()) replacement["insertedContent"] = {{"text", edit.text}};
      replacements.push_back(std::move(replacement));
    }
    return {{"description", {{"text", "Write it in the current form."}}},
            {"artifactChanges", Json::array({{{"artifactLocation", artifact_},
                                              {"replacements", std::move(replacements)}}})}};
  }

  bool hasMark() const { return outcome_.file.bytes && outcome_.file.bytes->hasByteOrderMark; }

  const ClassOutcome& outcome_;
  Json artifact_;
  bool asService_;
  std::string text_;
  std::map<std::string, std::size_t> numbers_;
};

Json artifactOf(const Json& location, const ClassOutcome& outcome) {
  Json artifact = {{"location", location}};
  if (!outcome.file.bytes) return artifact;
  artifact["encoding"] =
      outcome.file.bytes->encoding == fl::EncodingType::utf8 ? "UTF-8" : "ISO-8859-1";
  artifact["hashes"] = {{"sha-256", outcome.file.bytes->sha256}};
  return artifact;
}

std::string sentences(std::string text, const std::vector<std::string>& hints) {
  for (const std::string& hint : hints) text += fmt::format("\n{}.", hint);
  return text;
}

Json makeNotification(std::string_view level, std::string text, Json locations) {
  Json notification = {{"level", level}, {"message", {{"text", std::move(text)}}}};
  if (!locations.empty()) notification["locations"] = std::move(locations);
  return notification;
}

Json classLocation(const std::string& className) {
  return {{"logicalLocations", Json::array({logicalLocationOf(className, {})})}};
}

// The places of the syntax errors, or of the file, or of the class.
Json locationsOf(const Failure& failure, const SarifLocations& locations) {
  if (!failure.argument.starts_with('/')) return Json::array({classLocation(failure.className)});
  const Json artifact = locations.artifactOf(failure.argument);
  Json list = Json::array();
  for (const ca::Diagnostic& diagnostic : failure.diagnostics) {
    list.push_back(
        {{"physicalLocation",
          {{"artifactLocation", artifact},
           {"region",
            {{"startLine", diagnostic.line + 1}, {"startColumn", diagnostic.column + 1}}}}},
         {"message", {{"text", diagnostic.message}}}});
  }
  if (list.empty()) list.push_back({{"physicalLocation", {{"artifactLocation", artifact}}}});
  return list;
}

Json makeNotification(std::string_view level, const Failure& failure,
                      const SarifLocations& locations) {
  Json notification = Json::object();
  if (auto descriptor = sarifDescriptor(failure.id)) {
    notification["descriptor"] = std::move(*descriptor);
  }
  notification.update(makeNotification(level, sentences(failure.message, failure.hints),
                                       locationsOf(failure, locations)));
  return notification;
}

// Results are printed at once; the parts after them are stored until the end.
class SarifReport : public UpdateReport {
 public:
  // All three must outlive the report.
  SarifReport(const ReportOptions* options, const ClassRoots* roots, ReportOutput* output)
      : options_(options), locations_(roots), output_(output) {}

  // The file on a line of its own, which is empty if there is none, and the results.
  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override;
  // The notifications, each on a line.
  std::string notesOf(const ClassOutcome& outcome) const override;
  void printNotes(const std::string& notes) override;
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void addUndecided(const Failure& failure) override;
  void addNotFound(const std::string& id, const std::string& reason) override;
  void addSuggestion(const SuggestedRoots& suggestion, const std::string& text) override;
  void finish(ExitCodeType exitCode) override;

 private:
  void begin();
  // A failure as a result: its first place, and the others as related ones.
  Json resultOf(const Failure& failure) const;

  const ReportOptions* options_;
  SarifLocations locations_;
  ReportOutput* output_;
  bool hasBegun_ = false;
  bool hasResults_ = false;
  SpooledList artifacts_;
  SpooledList notifications_;
};

std::string SarifReport::dataOf(const ClassOutcome& outcome) const {
  const Json location = locations_.artifactOf(outcome.update.file);
  const std::string results = ClassResults(outcome, location, options_->asService).make();
  if (results.empty()) return {};
  return fmt::format("{}\n{}", dump(artifactOf(location, outcome)), results);
}

void SarifReport::printData(const std::string& data) {
  begin();
  const std::size_t end = data.find('\n');
  if (end > 0) artifacts_.add(std::string_view(data).substr(0, end));
  output_->print(hasResults_ ? ",\n  " : "\n  ");
  output_->print(std::string_view(data).substr(end + 1));
  hasResults_ = true;
}

std::string SarifReport::notesOf(const ClassOutcome& outcome) const {
  std::string notes;
  const auto add = [&](std::string_view level, std::string text) {
    Json location = classLocation(outcome.update.className);
    location["physicalLocation"] = {
        {"artifactLocation", locations_.artifactOf(outcome.update.file)}};
    notes += dump(makeNotification(level, std::move(text), Json::array({std::move(location)})));
    notes += '\n';
  };
  if (outcome.update.isRefused()) {
    add("error", refusalText(outcome.update));
  }
  for (const std::string& hint : outcome.hints) add("note", fmt::format("{}.", hint));
  return notes;
}

void SarifReport::printNotes(const std::string& notes) {
  for (std::string_view rest = notes; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    notifications_.add(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
}

Json SarifReport::resultOf(const Failure& failure) const {
  Json result = sarifResult(failure.id, "error", sentences(failure.message, failure.hints));
  Json places = locationsOf(failure, locations_);
  // A failure may be about a folder.
  const bool namesClass = failure.className.find('/') == std::string::npos;
  const std::string key = namesClass ? failure.className : dump(places.front());
  if (namesClass) places.front().update(classLocation(failure.className));
  for (std::size_t i = 1; i < places.size(); ++i) {
    places[i]["id"] = i;
    result["relatedLocations"].push_back(std::move(places[i]));
  }
  result["locations"] = Json::array({std::move(places.front())});
  result["partialFingerprints"] = fingerprintsOf(fingerprintKey(key, result, {}), 0);
  return result;
}

void SarifReport::addNotFound(const std::string& id, const std::string& reason) {
  const std::string className = id.substr(0, id.find('#'));
  Json result = sarifResult("soca:ConversionNotFound", "warning",
                            fmt::format("'{}' was selected and is not found: {}.", id, reason));
  result["locations"] = Json::array({classLocation(className)});
  result["partialFingerprints"] = fingerprintsOf(fingerprintKey(className, result, id), 0);
  result["properties"] = {{"conversion", id}};
  printData('\n' + dump(result));
}

// Such a text is also a notification about the run.
void SarifReport::addSuggestion(const SuggestedRoots& suggestion, const std::string& text) {
  Json result = sarifResult(unresolvedId, "error", text);
  const Json artifact = locations_.artifactOf(suggestion.roots.front());
  result["locations"] = Json::array({{{"physicalLocation", {{"artifactLocation", artifact}}}}});
  result["partialFingerprints"] = fingerprintsOf(fingerprintKey({}, result, {}), 0);
  printData('\n' + dump(result));
  notifications_.add(dump(makeNotification("error", text, Json())));
}

void SarifReport::addFailure(const Failure& failure) {
  if (options_->asService) {
    notifications_.add(dump(makeNotification("error", failure, locations_)));
    return;
  }
  // Several classes may fail because of the same file, and a file is listed only once.
  printData('\n' + dump(resultOf(failure)));
}

void SarifReport::addSkipped(const Failure& failure) {
  notifications_.add(dump(makeNotification("note", failure, locations_)));
}

void SarifReport::addUndecided(const Failure& failure) {
  const Json artifact = locations_.artifactOf(failure.path);
  Json place = {{"artifactLocation", artifact}};
  if (failure.place.line > 0) place["region"] = {{"startLine", failure.place.line}};
  Json location = classLocation(failure.className);
  location["physicalLocation"] = std::move(place);
  Json result = sarifResult(unresolvedId, "error", sentences(failure.message, failure.hints));
  result["locations"] = Json::array({std::move(location)});
  result["partialFingerprints"] = fingerprintsOf(fingerprintKey(failure.className, result, {}), 0);
  printData(fmt::format("{}\n{}", dump({{"location", artifact}}), dump(result)));
}

void SarifReport::finish(ExitCodeType exitCode) {
  begin();
  output_->print("],\n \"artifacts\": ");
  artifacts_.print(*output_);
  const bool isSuccess =
      exitCode == ExitCodeType::done || exitCode == ExitCodeType::somethingToChange;
  output_->print(
      fmt::format(",\n \"invocations\": [{{\"executionSuccessful\": {}, \"exitCode\": {},\n "
                  "\"toolExecutionNotifications\": ",
                  isSuccess, static_cast<int>(exitCode)));
  notifications_.print(*output_);
  output_->print("}]}]}\n");
}

void SarifReport::begin() {
  if (hasBegun_) return;
  output_->print(fmt::format(
      "{{\"$schema\": "
      "\"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
      "sarif-schema-2.1.0.json\",\n \"version\": \"2.1.0\", \"runs\": [{{\"tool\": {},\n"
      " \"columnKind\": \"utf16CodeUnits\", \"originalUriBaseIds\": {},\n"
      " \"results\": [",
      dump(sarifTool(options_->asService)), dump(locations_.baseIds())));
  hasBegun_ = true;
}

OutcomeNeeds needsOf(const ReportOptions&) {
  return {.hints = true,
          .edits = true,
          .conversions = true,
          .editsOfEach = true,
          .places = FindingPlacesType::related};
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<SarifReport>(context.options, context.roots, context.output);
}

}  // namespace

extern const ReportFormat sarifFormat;
constinit const ReportFormat sarifFormat = {
    .name = "sarif",
    .description = "prints a log in the form SARIF 2.1.0, for viewers of findings",
    .isForPeople = false,
    .takesEdits = true,
    .isForService = true,
    .whyNotWritten = "its places are those in the current files; run it first, and then --write",
    .needs = needsOf,
    .make = makeReport};

}  // namespace soca
