// An update as a SARIF 2.1.0 log, for tools that show the results of analyses.
//
// Every conversion is a result with its edits as a fix, every message of a finding is a result
// without one, and a class that fails, is refused or is skipped is a notification. The log has no
// times and no names of the machine: the same tree gives the same bytes.
#pragma once

#include <string>

#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"
#include "reports/formats/SarifLocations.h"

namespace soca::cli {

// Results are printed at once; the parts after them are stored until the end.
class SarifReport : public UpdateReport {
 public:
  // Both must outlive the report.
  SarifReport(const ClassRoots* roots, Console* console) : locations_(roots), console_(console) {}

  // The file on a line of its own, and the results.
  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override;
  void printNotes(const ClassOutcome& outcome) override;
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void finish(ExitCodeType exitCode) override;

 private:
  void begin();

  SarifLocations locations_;
  Console* console_;
  bool hasBegun_ = false;
  bool hasResults_ = false;
  SpooledList artifacts_;
  SpooledList notifications_;
};

}  // namespace soca::cli
