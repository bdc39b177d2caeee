#include "platform/analyzer/FileAnalysis.h"

#include <utility>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/timing/Phase.h"

namespace ca {

namespace {

using fl::timing::Phase;
using fl::timing::PhaseType;

// An analysis and what it was made of: the file as it was then, or an overlay text.
struct Remembered {
  std::string path;
  std::shared_ptr<const fl::ustring> overlay;
  FileAnalysis file;
};

// The class runtime and the service ask for the same class one after the other.
Remembered& lastOfThread() {
  thread_local Remembered last;
  return last;
}

FileAnalysis analyzeOverlay(const std::string& path, std::shared_ptr<const fl::ustring> overlay) {
  Remembered& last = lastOfThread();
  if (last.overlay == overlay && last.path == path) return last.file;
  last = {};
  const Phase phase(PhaseType::analyse);
  FileAnalysis file{std::make_shared<SourceAnalysis>(overlay), {}};
  last = {path, std::move(overlay), file};
  return file;
}

}  // namespace

FileAnalysis analyzeFile(const std::string& path) {
  if (auto overlay = fl::filesystem::findOverlay(path)) return analyzeOverlay(path, overlay);
  Remembered& last = lastOfThread();
  if (last.file.stamp && last.path == path &&
      fl::filesystem::stampInView(path) == last.file.stamp) {
    return last.file;
  }
  last = {};
  try {
    auto source = fl::filesystem::readSourceFile(path, maximumFileSize);
    const Phase phase(PhaseType::analyse);
    FileAnalysis file{std::make_shared<SourceAnalysis>(std::move(source.text)), {}};
    if (source.recentlyChanged) return file;
    file.stamp = source.stamp;
    last = {path, nullptr, file};
    return file;
  } catch (const fl::filesystem::ReadError& error) {
    throw InvalidAnalysisException(error.what());
  }
}

void forgetLastAnalysis() { lastOfThread() = {}; }

}  // namespace ca
