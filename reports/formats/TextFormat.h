// An update for users: the diffs, or the names of the classes that would change, and the messages
// about the classes.
#pragma once

#include <string>

#include "reports/UpdateReport.h"

namespace soca::cli {

class TextReport : public UpdateReport {
 public:
  // All three must outlive the report.
  TextReport(const Options* options, const FileNames* names, Console* console)
      : options_(options), names_(names), console_(console) {}

  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override { console_->print(data); }
  void printNotes(const ClassOutcome& outcome) override;
  void addFailure(const Failure& failure) override { printFailure(*console_, failure); }
  void addSkipped(const Failure& failure) override;
  void finish(ExitCodeType) override {}

  // "soca: <id>: <message>", the source lines concerned, and the hints.
  static void printFailure(Console& console, const Failure& failure);

 private:
  const Options* options_;
  const FileNames* names_;
  Console* console_;
};

}  // namespace soca::cli
