#include "reports/outcomes/FileVerdict.h"

#include <fmt/core.h>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"

namespace soca {

namespace {

fl::ustring readText(const std::string& path) {
  if (const auto overlay = fl::filesystem::findOverlay(path)) return *overlay;
  return fl::filesystem::readSourceFile(path, ca::maximumFileSize).text;
}

}  // namespace

FileVerdict judgeFile(const std::string& path) {
  using Type = FileVerdict::Type;
  try {
    const fl::ustring text = readText(path);
    if (text.empty()) return {Type::isEmpty, fmt::format("the file '{}' is empty", path)};
    FileVerdict noClass{Type::holdsNoClass, fmt::format("the file '{}' holds no class", path)};
    // A search is cheaper than an analysis, and excludes most files without a class.
    if (text.find(u"classdef") == fl::ustring::npos) return noClass;
    return ca::analyzeText(text)->getClassdef() == nullptr ? noClass : FileVerdict();
  } catch (const fl::filesystem::ReadError& error) {
    return {Type::isUnreadable, error.what()};
  } catch (const ca::InvalidAnalysisException&) {
    // Only a class can cause this failure.
    return {};
  }
}

}  // namespace soca
