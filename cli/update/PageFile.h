// The review page that a run makes beside its output.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/options/Options.h"
#include "files/writing/WholeFile.h"
#include "reports/SecondReport.h"
#include "reports/UpdateReport.h"

namespace soca::cli {

class PageFile {
 public:
  // `options` must outlive this object.
  explicit PageFile(const Options* options) : options_(options) {}

  // The report of the run, joined with that of the page if there is to be one. All of `context` and
  // this object must outlive it. Throws UsageError if no file can be made at the path.
  std::unique_ptr<UpdateReport> makeReport(const ReportContext& context);
  // Puts the page at its path. Returns what is wrong if that fails; does nothing without a page.
  std::optional<std::string> commit();

 private:
  std::string faultText(const std::string& reason) const;

  const Options* options_;
  std::optional<WholeFile> file_;
  std::optional<FileOutput> output_;
};

}  // namespace soca::cli
