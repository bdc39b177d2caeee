// An update as one page for a browser, in which a person looks at the conversions and selects those
// to write.
#include <cstddef>
#include <memory>
#include <string>

#include "ReviewPage.h"
#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"
#include "reports/formats/PageData.h"

namespace soca {
namespace {

// Prints the classes as they come, in several elements: a browser copies the text of each one when
// it is read.
class HtmlReport : public UpdateReport {
 public:
  // All of `context` must outlive the report.
  explicit HtmlReport(const ReportContext& context)
      : options_(context.options), names_(context.names), output_(context.output) {}

  std::string dataOf(const ClassOutcome& outcome) const override {
    return pageLinesOf(outcome, *names_);
  }

  void printData(const std::string& data) override {
    begin();
    if (size_ == 0) output_->print("<script type=\"text/plain\" class=\"classes\">\n");
    output_->print(data);
    size_ += data.size();
    if (size_ >= mostInElement) endElement();
  }

  std::string notesOf(const ClassOutcome&) const override { return {}; }
  void printNotes(const std::string&) override {}
  void addFailure(const Failure& failure) override { failures_.add(pageFailure(failure)); }
  void addSkipped(const Failure& failure) override { skipped_.add(pageFailure(failure)); }
  void addUndecided(const Failure& failure) override { undecided_.add(pageFailure(failure)); }
  void addNotFound(const std::string&, const std::string&) override {}
  void addSuggestion(const SuggestedRoots&, const std::string&) override {}

  void finish(ExitCodeType exitCode) override {
    begin();
    endElement();
    printList("failures", failures_);
    printList("undecided", undecided_);
    printList("skipped", skipped_);
    output_->print("<script type=\"application/json\" id=\"tables\">");
    output_->print(pageTables(*options_, exitCode));
    output_->print("</script>\n");
    for (const std::string_view part : reviewPageEnd) output_->print(part);
  }

 private:
  // Measured: a browser reads elements of 1 MiB half as fast as smaller ones.
  static constexpr std::size_t mostInElement = std::size_t{1} << 15U;

  void begin() {
    if (!hasBegun_) {
      for (const std::string_view part : reviewPageStart) output_->print(part);
    }
    hasBegun_ = true;
  }

  void endElement() {
    if (size_ > 0) output_->print("</script>\n");
    size_ = 0;
  }

  void printList(const std::string& id, SpooledList& list) {
    output_->print("<script type=\"application/json\" id=\"" + id + "\">");
    list.print(*output_);
    output_->print("</script>\n");
  }

  const ReportOptions* options_;
  const FileNames* names_;
  ReportOutput* output_;
  bool hasBegun_ = false;
  // Of the element that is not ended yet.
  std::size_t size_ = 0;
  SpooledList failures_;
  SpooledList undecided_;
  SpooledList skipped_;
};

OutcomeNeeds needsOf(const ReportOptions&) {
  return {.hints = true,
          .conversions = true,
          .places = FindingPlacesType::related,
          .identity = true,
          .hunks = true};
}

std::unique_ptr<UpdateReport> makeReport(const ReportContext& context) {
  return std::make_unique<HtmlReport>(context);
}

}  // namespace

extern const ReportFormat htmlFormat;
constinit const ReportFormat htmlFormat = {
    .name = "html",
    .description =
        "prints a page for a browser, in which the conversions are reviewed and selected",
    .isForPeople = false,
    .takesEdits = false,
    .isForService = false,
    .whyNotWritten = {},
    .needs = needsOf,
    .make = makeReport};

}  // namespace soca
