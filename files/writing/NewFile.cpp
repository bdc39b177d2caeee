#include "files/writing/NewFile.h"

#include <ctime>
#include <functional>
#include <numeric>
#include <utility>

#include "files/writing/FileWriter.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/text/FileText.h"
#include "platform/text/TextSearch.h"

namespace soca {
namespace {

constexpr timespec settlingTime = {0, 25'000'000};

// The file as it was when it was analysed.
fl::filesystem::SourceFileText readAnalysedFile(const std::string& path,
                                                fl::ustring_view analysedText,
                                                StampType stampType) {
  try {
    for (int attempts = 0; attempts < 4; ++attempts) {
      auto file = fl::filesystem::readSourceFile(path, ca::maximumFileSize);
      if (!fl::areEqualTexts(file.text, analysedText)) break;
      if (stampType == StampType::any || !file.recentlyChanged) return file;
      ::nanosleep(&settlingTime, nullptr);
    }
  } catch (const fl::filesystem::ReadError&) {
    throw ClassFault("soca:FileChanged", {path});
  }
  throw ClassFault("soca:FileChanged", {path});
}

}  // namespace

fl::filesystem::FileState stateOfOldFile(const std::string& path,
                                         const std::optional<fl::filesystem::FileState>& analysed,
                                         fl::ustring_view analysedText, StampType stampType) {
  if (analysed && fl::filesystem::stampOf(path) == analysed->stamp) return *analysed;
  const auto file = readAnalysedFile(path, analysedText, stampType);
  return {file.stamp, file.encoding};
}

std::string makeBytes(const std::string& path, fl::ustring_view text, fl::EncodingType encoding) {
  auto bytes = fl::encodeFileText(text, encoding);
  if (bytes) return std::move(*bytes);
  const char* name = encoding == fl::EncodingType::utf8 ? "UTF-8" : "ISO-8859-1";
  throw ClassFault("soca:TextNotEncodable", {path, name});
}

void checkIsEncodable(const std::string& path, fl::ustring_view text, fl::EncodingType encoding) {
  // Most texts are ASCII, which every encoding has; the others are tried.
  const char16_t bits =
      std::accumulate(text.begin(), text.end(), char16_t{0}, std::bit_or<char16_t>());
  if (bits > 0x7F) makeBytes(path, text, encoding);
}

void checkIsReplaceable(const std::string& path) {
  const auto reason = findReasonNotToReplace(path);
  if (reason) throw ClassFault("soca:FileNotReplaceable", {path, *reason});
}

}  // namespace soca
