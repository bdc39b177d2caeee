#include <array>

#include "reports/UpdateReport.h"

namespace soca {

// Each is defined in the file of its name.
extern const ReportFormat textFormat;
extern const ReportFormat jsonFormat;
extern const ReportFormat sarifFormat;

std::span<const ReportFormat> reportFormats() {
  static const std::array formats = {textFormat, jsonFormat, sarifFormat};
  return formats;
}

}  // namespace soca
