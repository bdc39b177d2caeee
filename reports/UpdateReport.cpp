#include "reports/UpdateReport.h"

#include "reports/formats/JsonFormat.h"
#include "reports/formats/SarifFormat.h"
#include "reports/formats/TextFormat.h"

namespace soca::cli {

std::unique_ptr<UpdateReport> makeUpdateReport(const Options& options, const ClassRoots& roots,
                                               const FileNames& names, Console& console) {
  if (options.format == FormatType::json) return std::make_unique<JsonReport>(&console);
  if (options.format == FormatType::sarif) return std::make_unique<SarifReport>(&roots, &console);
  return std::make_unique<TextReport>(&options, &names, &console);
}

}  // namespace soca::cli
