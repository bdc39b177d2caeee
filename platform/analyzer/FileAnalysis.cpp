#include "platform/analyzer/FileAnalysis.h"

#include <optional>
#include <utility>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"

namespace ca {

namespace {

using fl::filesystem::FileStamp;

// An analysis and what it was made of: the file as it was then, or an overlay text.
struct Remembered {
  std::string path;
  std::optional<FileStamp> stamp;
  std::shared_ptr<const fl::ustring> overlay;
  std::shared_ptr<SourceAnalysis> analysis;
};

// The class runtime and the service ask for the same class one after the other.
Remembered& lastOfThread() {
  thread_local Remembered last;
  return last;
}

std::shared_ptr<SourceAnalysis> analyzeOverlay(const std::string& path,
                                               std::shared_ptr<const fl::ustring> overlay) {
  Remembered& last = lastOfThread();
  if (last.analysis != nullptr && last.overlay == overlay && last.path == path)
    return last.analysis;
  last = {};
  auto analysis = std::make_shared<SourceAnalysis>(*overlay);
  last = {.path = path, .stamp = {}, .overlay = std::move(overlay), .analysis = analysis};
  return analysis;
}

}  // namespace

std::shared_ptr<SourceAnalysis> analyzeFile(const std::string& path) {
  if (auto overlay = fl::filesystem::findOverlay(path)) return analyzeOverlay(path, overlay);
  Remembered& last = lastOfThread();
  if (last.analysis != nullptr && last.stamp && last.path == path &&
      fl::filesystem::stampOf(path) == last.stamp) {
    return last.analysis;
  }
  last = {};
  try {
    auto file = fl::filesystem::readSourceFile(path, maximumFileSize);
    auto analysis = std::make_shared<SourceAnalysis>(std::move(file.text));
    if (!file.recentlyChanged) {
      last = {.path = path, .stamp = file.stamp, .overlay = {}, .analysis = analysis};
    }
    return analysis;
  } catch (const fl::filesystem::ReadError& error) {
    throw InvalidAnalysisException(error.what());
  }
}

}  // namespace ca
