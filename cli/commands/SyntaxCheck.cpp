#include "cli/commands/SyntaxCheck.h"

#include <fmt/core.h>

#include <cstddef>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "cli/terminal/MessageText.h"
#include "cli/terminal/Signals.h"
#include "files/targets/NearestFile.h"
#include "files/targets/NearestName.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/paths/NativePath.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"
#include "reports/passes/OrderedWorkers.h"
#include "reports/text/SyntaxReport.h"

namespace soca::cli {
namespace {

struct CheckedFile {
  // The syntax errors.
  std::string report;
  // The reason why the file could not be analysed.
  std::string failure;
};

CheckedFile checkFile(const std::string& file) {
  const std::string path = fl::filesystem::makeAbsoluteLexically(file);
  // The argument is UTF-8, but the path of the current folder may not be.
  const fl::DecodedText decoded = fl::decodeFileText(path);
  if (decoded.encoding != fl::EncodingType::utf8) {
    return {{}, fmt::format("the path '{}' is not UTF-8", fl::i18n::to_string(decoded.text))};
  }
  try {
    const auto analysis = ca::createSingleFileAnalyzer()->analyze(decoded.text, {}, {});
    return {formatSyntaxErrors(file, *analysis, std::numeric_limits<std::size_t>::max()), {}};
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return {{}, error.what() + didYouMean(nearestPath(file))};
  }
}

}  // namespace

ExitCodeType runSyntaxCheck(const Options& options, Console& console) {
  auto exitCode = ExitCodeType::done;
  std::size_t index = 0;
  const auto next = [&]() -> std::optional<std::string> {
    if (wasInterrupted() || index == options.arguments.size()) return std::nullopt;
    return options.arguments[index++];
  };
  const auto consume = [&](const CheckedFile& file) {
    if (console.colorsOut()) {
      console.printColored(colorMessages(file.report));
    } else {
      console.print(file.report);
    }
    if (!file.failure.empty()) console.complain(file.failure);
    if (!file.report.empty() || !file.failure.empty()) exitCode = ExitCodeType::failed;
    return !wasInterrupted();
  };
  OrderedWorkers<std::string, CheckedFile>(
      options.jobs, next, [](const std::string& file) { return checkFile(file); }, consume)
      .run();
  return wasInterrupted() ? interruptExitCode() : exitCode;
}

}  // namespace soca::cli
