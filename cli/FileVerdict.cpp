#include "cli/FileVerdict.h"

#include <fmt/core.h>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/SourceReader.h"

namespace soca::cli {

FileVerdict judgeFile(const std::string& path) {
  using Type = FileVerdict::Type;
  try {
    const auto file = fl::filesystem::readSourceFile(path, ca::maximumFileSize);
    if (file.text.empty()) return {Type::isEmpty, fmt::format("the file '{}' is empty", path)};
    FileVerdict noClass{Type::holdsNoClass, fmt::format("the file '{}' holds no class", path)};
    // A look at the text is cheaper than an analysis, and most files without a class have none.
    if (file.text.find(u"classdef") == fl::ustring::npos) return noClass;
    return ca::analyzeText(file.text)->getClassdef() == nullptr ? noClass : FileVerdict();
  } catch (const fl::filesystem::ReadError& error) {
    return {Type::isUnreadable, error.what()};
  } catch (const ca::InvalidAnalysisException&) {
    // There is something in it that only a class can bring that far.
    return {};
  }
}

}  // namespace soca::cli
