// An update as a JSON document.
//
//   {"version": 1,
//    "results": [{"class": "a.B", "file": "/abs/a/B.vlm", "updated": true, "text": "...",
//                 "messages": ["..."]}],
//    "errors": [{"class": "a.C", "id": "VELUM:system:Analyzer:SyntaxError", "message": "...",
//                "diagnostics": [{"line": 3, "column": 5, "message": "..."}], "hint": "..."}],
//    "skipped": [{"class": "a.D", "id": "...", "message": "...", "hint": "..."}]}
//
// With `--edits` a result has three more keys: the checksum of the current file, the single
// replacements in it, in the order of the file, and the messages with their places. Offsets and
// lengths are bytes of that file; a finding without a known place has no line.
//
//    "sha256": "9f86...", "edits": [{"offset": 120, "length": 4, "text": "..."}],
//    "findings": [{"id": "VELUM:system:Analyzer:LegacyImplReferenced", "message": "...", "line": 3,
//                  "column": 5, "endColumn": 26, "related": [{"line": 9, ..., "message": "..."}]}]
//
// Lines and columns are one-based; columns count UTF-16 code units. `hint` is optional; a refused
// result has the reason under `refused`.
#pragma once

#include <string>

#include "reports/SpooledList.h"
#include "reports/UpdateReport.h"

namespace soca::cli {

// Results are printed at once; errors and skipped classes are stored until the end.
class JsonReport : public UpdateReport {
 public:
  // `console` must outlive the report.
  explicit JsonReport(Console* console) : console_(console) {}

  std::string dataOf(const ClassOutcome& outcome) const override;
  void printData(const std::string& data) override;
  void printNotes(const ClassOutcome&) override {}
  void addFailure(const Failure& failure) override;
  void addSkipped(const Failure& failure) override;
  void finish(ExitCodeType exitCode) override;

 private:
  void beginResults();

  Console* console_;
  bool hasBegun_ = false;
  bool hasResults_ = false;
  SpooledList errors_;
  SpooledList skipped_;
};

}  // namespace soca::cli
