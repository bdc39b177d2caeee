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

// Whether the text is that of a file in UTF-16, read as one of bytes: it begins with a byte order
// mark, or with an ASCII character, one byte of which is zero.
bool isUtf16(fl::ustring_view text) {
  return text.starts_with(u"\u00FF\u00FE") || text.starts_with(u"\u00FE\u00FF") ||
         (text.size() > 1 && (text[0] == 0) != (text[1] == 0));
}

}  // namespace

FileVerdict judgeFile(const std::string& path, WordsType words) {
  using Type = FileVerdict::Type;
  try {
    const fl::ustring text = readText(path);
    if (text.empty()) return {Type::isEmpty, fmt::format("the file '{}' is empty", path)};
    FileVerdict noClass{Type::holdsNoClass, fmt::format("the file '{}' holds no class", path)};
    if (words == WordsType::program && isUtf16(text))
      return {Type::isUtf16, fmt::format("the file '{}' is in UTF-16", path)};
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
