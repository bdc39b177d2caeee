// How an update is shown.
#pragma once

#include <memory>
#include <string>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/ClassRoots.h"
#include "reports/ExitCodes.h"
#include "reports/FileNames.h"
#include "reports/outcomes/Outcome.h"

namespace soca::cli {

// One format. What is said of a class comes in two parts: data for standard output, which can be
// made by any thread, and notes for people.
class UpdateReport {
 public:
  virtual ~UpdateReport() = default;

  // May be called by several threads at once. Empty if there is nothing to print.
  virtual std::string dataOf(const ClassOutcome& outcome) const = 0;
  virtual void printData(const std::string& data) = 0;

  virtual void printNotes(const ClassOutcome& outcome) = 0;
  virtual void addFailure(const Failure& failure) = 0;
  virtual void addSkipped(const Failure& failure) = 0;
  // Prints what belongs behind everything else. The run is to end with this code.
  virtual void finish(ExitCodeType exitCode) = 0;
};

// All must outlive the report.
std::unique_ptr<UpdateReport> makeUpdateReport(const Options& options, const ClassRoots& roots,
                                               const FileNames& names, Console& console);

}  // namespace soca::cli
