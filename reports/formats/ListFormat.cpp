// The conversions of an update, each on a line whose columns are separated by tabs: the id, the
// risk, `made` or the reason for which it is left out, and the file with the line.
#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "reports/UpdateReport.h"
#include "reports/formats/ListReport.h"

namespace soca {
namespace {

class TabListReport : public ListReport {
 public:
  explicit TabListReport(const ReportContext& context)
      : ListReport(context), names_(context.names), output_(context.output) {}

  std::string dataOf(const ClassOutcome& outcome) const override {
    const std::string file = names_->shown(outcome.update.file);
    std::string text;
    for (const Conversion* each : inOrderOfLines(outcome.update.conversions)) {
      text +=
          fmt::format("{}\t{}\t{}\t{}:{}\n", each->id, riskName(each->risk.type),
                      each->leftOut ? each->leftOut->id : "made", file, each->place.start.line + 1);
    }
    return text;
  }
  void printData(const std::string& data) override { output_->print(data); }

 private:
  const FileNames* names_;
  ReportOutput* output_;
};

OutcomeNeeds needsOf(const ReportOptions&) { return {.conversions = true}; }

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<TabListReport>(context);
}

}  // namespace

extern const ReportFormat listFormat;
constinit const ReportFormat listFormat = {.name = "text",
                                           .description = {},
                                           .isForPeople = false,
                                           .takesEdits = false,
                                           .whyNotWritten = {},
                                           .needs = needsOf,
                                           .make = makeReport};

}  // namespace soca
