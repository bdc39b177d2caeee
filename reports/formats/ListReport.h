// What the formats that list conversions have in common.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "reports/UpdateReport.h"

namespace soca {

extern const ReportFormat textFormat;

// Prints failures as text. There are no notes, because what is left out is in the list.
class ListReport : public UpdateReport {
 public:
  // All of `context` must outlive the report.
  explicit ListReport(const ReportContext& context) : messages_(textFormat.make(context)) {}

  std::string notesOf(const ClassOutcome&) const override { return {}; }
  void printNotes(const std::string&) override {}
  void addFailure(const Failure& failure) override { messages_->addFailure(failure); }
  void addSkipped(const Failure& failure) override { messages_->addSkipped(failure); }
  void addUndecided(const Failure& failure) override { messages_->addUndecided(failure); }
  void addNotFound(const std::string& id, const std::string& reason) override {
    messages_->addNotFound(id, reason);
  }
  void addSuggestion(const SuggestedRoots&, const std::string&) override {}
  void finish(ExitCodeType exitCode) override { messages_->finish(exitCode); }

 protected:
  // Those of one line in the order in which they were found.
  static std::vector<const Conversion*> inOrderOfLines(const std::vector<Conversion>& conversions) {
    std::vector<const Conversion*> sorted;
    for (const Conversion& each : conversions) sorted.push_back(&each);
    std::ranges::stable_sort(sorted, {},
                             [](const Conversion* each) { return each->place.start.line; });
    return sorted;
  }

 private:
  std::unique_ptr<UpdateReport> messages_;
};

}  // namespace soca
