#include "platform/analyzer/Analyzer.h"

#include <utility>

#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"

namespace ca {

namespace {

// `name` is the file name with which the message begins.
std::shared_ptr<AnalysisResult> refuseTooDeep(std::shared_ptr<SourceAnalysis> analysis,
                                              const std::string& name) {
  if (analysis->isTooDeep()) {
    throw InvalidAnalysisException(name + ": the text is nested more than " +
                                   std::to_string(maximumNesting) + " levels deep");
  }
  return analysis;
}

class SingleFileAnalyzer final : public Analyzer {
 public:
  std::shared_ptr<AnalysisResult> analyze(const fl::ustring& path, const fl::ustring& /*directory*/,
                                          const AnalysisOptions& /*options*/) override {
    const std::string file = fl::i18n::to_string(path);
    try {
      return refuseTooDeep(analyzeFile(file), file);
    } catch (const fl::filesystem::ReadError& error) {
      throw InvalidAnalysisException(error.what());
    }
  }
};

}  // namespace

std::unique_ptr<Analyzer> createSingleFileAnalyzer() {
  return std::make_unique<SingleFileAnalyzer>();
}

std::shared_ptr<AnalysisResult> analyzeText(fl::ustring text) {
  return refuseTooDeep(std::make_shared<SourceAnalysis>(std::move(text)), "text");
}

}  // namespace ca
