// The output formats of an update.
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

// One format. The output for a class has two parts: data for standard output, which any thread can
// make, and notes for users.
class UpdateReport {
 public:
  virtual ~UpdateReport() = default;

  // May be called by several threads at once. Empty if there is nothing to print.
  virtual std::string dataOf(const ClassOutcome& outcome) const = 0;
  virtual void printData(const std::string& data) = 0;

  virtual void printNotes(const ClassOutcome& outcome) = 0;
  virtual void addFailure(const Failure& failure) = 0;
  virtual void addSkipped(const Failure& failure) = 0;
  // Prints the end of the output. `exitCode` is the exit code of the run.
  virtual void finish(ExitCodeType exitCode) = 0;
};

// All must outlive the report.
std::unique_ptr<UpdateReport> makeUpdateReport(const Options& options, const ClassRoots& roots,
                                               const FileNames& names, Console& console);

}  // namespace soca::cli
