#include "cli/update/PageFile.h"

#include <fmt/core.h>

#include <stdexcept>
#include <utility>

#include "files/targets/UsageError.h"

namespace soca::cli {

std::unique_ptr<UpdateReport> PageFile::makeReport(const ReportContext& context) {
  auto report = options_->format->make(context);
  if (options_->reportFile.empty()) return report;
  try {
    file_.emplace(options_->reportFile);
  } catch (const std::runtime_error& error) {
    throw UsageError(faultText(error.what()));
  }
  output_.emplace(&*file_);
  ReportContext ofPage = context;
  ofPage.output = &*output_;
  return joinReports(std::move(report), pageFormat().make(ofPage));
}

std::optional<std::string> PageFile::commit() {
  if (!file_) return std::nullopt;
  const auto reason = file_->commit();
  if (!reason) return std::nullopt;
  return faultText(*reason);
}

std::string PageFile::faultText(const std::string& reason) const {
  return fmt::format("the report '{}' can't be written: {}", options_->reportFile, reason);
}

}  // namespace soca::cli
