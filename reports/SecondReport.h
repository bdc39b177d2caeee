// A report that is made beside another one, into a file.
#pragma once

#include <memory>
#include <string>

#include "files/writing/WholeFile.h"
#include "reports/UpdateReport.h"

namespace soca {

// The data of a report as the content of a file; it has no messages.
class FileOutput : public ReportOutput {
 public:
  // `file` must outlive this object.
  explicit FileOutput(WholeFile* file) : file_(file) {}

  bool colorsOut() const override { return false; }
  void print(std::string_view text) override { file_->write(text); }
  void printColored(std::string_view text) override { file_->write(text); }
  void printMessages(std::string_view) override {}
  void complain(std::string_view) override {}
  void tell(std::string_view) override {}

 private:
  WholeFile* file_;
};

// Both reports as one, so that a run stores and orders what they print of a class together.
// `second` has no notes.
std::unique_ptr<UpdateReport> joinReports(std::unique_ptr<UpdateReport> first,
                                          std::unique_ptr<UpdateReport> second);

// The parts of an outcome that either of them needs.
OutcomeNeeds joinNeeds(const OutcomeNeeds& first, const OutcomeNeeds& second);

}  // namespace soca
