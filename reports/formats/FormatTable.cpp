#include <array>

#include "reports/UpdateReport.h"

namespace soca {

// Each is defined in the file of its name.
extern const ReportFormat textFormat;
extern const ReportFormat jsonFormat;
extern const ReportFormat sarifFormat;
extern const ReportFormat htmlFormat;

std::span<const ReportFormat> reportFormats() {
  static const std::array formats = {textFormat, jsonFormat, sarifFormat, htmlFormat};
  return formats;
}

const ReportFormat& pageFormat() { return htmlFormat; }

}  // namespace soca
