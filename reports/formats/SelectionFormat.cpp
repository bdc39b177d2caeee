// The conversions of an update as a selection, which a person edits and the program reads again.
#include <fmt/core.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "conversions/selection/SelectionFile.h"
#include "reports/UpdateReport.h"
#include "reports/formats/ListReport.h"
#include "reports/outcomes/ConversionText.h"

namespace soca {
namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The same keys for those that are made and those that are left out, so that a line can be moved
// from one list to the other.
Json entryOf(const Conversion& conversion) {
  Json json = {{"id", conversion.id},
               {"risk", riskName(conversion.risk.type)},
               {"line", conversion.place.start.line + 1}};
  if (!conversion.needs.empty()) json["needs"] = conversion.needs;
  if (!conversion.leftOut) return json;
  json["reason"] = conversion.leftOut->id;
  json["message"] = describeLeftOut(conversion, *conversion.leftOut, LinesType::old);
  return json;
}

std::string listOf(const std::vector<const Conversion*>& conversions, bool isMade) {
  std::string text;
  for (const Conversion* each : conversions) {
    if (each->isMade() != isMade) continue;
    text += fmt::format("{}\n    {}", text.empty() ? "" : ",", dump(entryOf(*each)));
  }
  return fmt::format("[{}]", text);
}

class SelectionReport : public ListReport {
 public:
  explicit SelectionReport(const ReportContext& context)
      : ListReport(context), names_(context.names), output_(context.output) {}

  std::string dataOf(const ClassOutcome& outcome) const override {
    const auto conversions = inOrderOfLines(outcome.update.conversions);
    if (conversions.empty()) return {};
    return fmt::format(
        "{{\"class\": {}, \"file\": {}, \"sha256\": \"{}\",\n   \"conversions\": {},\n"
        "   \"leftOut\": {}}}",
        dump(outcome.update.className), dump(names_->shown(outcome.update.file)),
        outcome.file.bytes->sha256, listOf(conversions, true), listOf(conversions, false));
  }

  void printData(const std::string& data) override {
    begin();
    output_->print(hasClasses_ ? ",\n  " : "\n  ");
    output_->print(data);
    hasClasses_ = true;
  }

  void finish(ExitCodeType exitCode) override {
    begin();
    output_->print("]}\n");
    ListReport::finish(exitCode);
  }

 private:
  void begin() {
    if (hasBegun_) return;
    output_->print(fmt::format("{{\"version\": {},\n \"classes\": [", selectionVersion));
    hasBegun_ = true;
  }

  const FileNames* names_;
  ReportOutput* output_;
  bool hasBegun_ = false;
  bool hasClasses_ = false;
};

OutcomeNeeds needsOf(const ReportOptions&) { return {.conversions = true, .identity = true}; }

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<SelectionReport>(context);
}

}  // namespace

extern const ReportFormat selectionFormat;
constinit const ReportFormat selectionFormat = {.name = "json",
                                                .description = {},
                                                .isForPeople = false,
                                                .takesEdits = false,
                                                .whyNotWritten = {},
                                                .needs = needsOf,
                                                .make = makeReport};

}  // namespace soca
