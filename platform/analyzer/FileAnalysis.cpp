#include "platform/analyzer/FileAnalysis.h"

#include <utility>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/timing/Phase.h"

namespace ca {

namespace {

using fl::timing::Phase;

using Analysis = std::shared_ptr<SourceAnalysis>;

// An analysis and its input: the file with its stamp, or an overlay text.
struct Remembered {
  std::string path;
  std::shared_ptr<const fl::ustring> overlay;
  Analysis analysis;
};

// The class runtime and the service ask for the same class in succession.
Remembered& lastOfThread() {
  thread_local Remembered last;
  return last;
}

bool isOfFileInView(const Remembered& last, const std::string& path) {
  if (last.analysis == nullptr || !last.analysis->file() || last.path != path) return false;
  return fl::filesystem::stampInView(path) == last.analysis->file()->stamp;
}

Analysis analyzeOverlay(const std::string& path, std::shared_ptr<const fl::ustring> overlay) {
  Remembered& last = lastOfThread();
  if (last.overlay == overlay && last.path == path) return last.analysis;
  last = {};
  const Phase phase(fl::timing::analysePhase);
  auto analysis = std::make_shared<SourceAnalysis>(overlay);
  last = {path, std::move(overlay), analysis};
  return analysis;
}

}  // namespace

Analysis analyzeFile(const std::string& path) {
  if (auto overlay = fl::filesystem::findOverlay(path)) return analyzeOverlay(path, overlay);
  Remembered& last = lastOfThread();
  if (isOfFileInView(last, path)) return last.analysis;
  last = {};
  auto source = fl::filesystem::readSourceFile(path, maximumFileSize);
  const Phase phase(fl::timing::analysePhase);
  auto analysis = std::make_shared<SourceAnalysis>(std::move(source));
  if (analysis->file()) last = {path, nullptr, analysis};
  return analysis;
}

void forgetLastAnalysis() { lastOfThread() = {}; }

}  // namespace ca
