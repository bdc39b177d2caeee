#include "service/ClassLoader.h"

#include <utility>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"
#include "platform/analyzer/Analyzer.h"

namespace soca {
namespace {

namespace analyzerMessages = VELUM::system::Analyzer;

// The analyzer's options, as its factory sets them.
ca::AnalysisOptions makeAnalysisOptions() {
  ca::AnalysisOptions options;
  options.codeGeneration = std::make_shared<ca::CodeGenerationSupport>();
  const std::shared_ptr<ca::config::ConfigSource> source =
      std::make_shared<ca::config::FactoryConfigSource>();
  options.config = std::make_shared<ca::config::Config>(source);
  return options;
}

std::shared_ptr<ca::AnalysisResult> analyze(ca::Analyzer& analyzer, const fl::ustring& path,
                                            const ca::AnalysisOptions& options) {
  try {
    return analyzer.analyze(path, fl::ustring(), options);
  } catch (const ca::InvalidAnalysisException&) {
    raiseErrMsgId(analyzerMessages::CodeAnalyzerError(path));
  }
}

std::shared_ptr<ca::AnalysisResult> parseClassFile(const fl::ustring& path) {
  const auto options = makeAnalysisOptions();
  const auto analyzer = ca::createSingleFileAnalyzer();
  auto analysis = analyze(*analyzer, path, options);
  if (analysis->hasSyntaxError()) raiseErrMsgId(analyzerMessages::SyntaxError(path));
  // This id is otherwise raised with a class name; here it has the path.
  if (analysis->getClassdef() == nullptr) raiseErrMsgId(analyzerMessages::NotASystemObject(path));
  return analysis;
}

}  // namespace

std::unique_ptr<AnalyzedClass> ClassLoader::load() const {
  auto metaClass = metaData->getMetaClass(className);
  if (!metaClass->isSystemObject()) raiseErrMsgId(analyzerMessages::NotASystemObject(className));
  auto analysis = parseClassFile(metaClass->getClassFile());
  auto definition = std::make_unique<ClassDefinition>(
      analysis->getClassdef(), ClassContext{analysis.get(), metaClass.get()});
  return std::make_unique<AnalyzedClass>(
      AnalyzedClass{className, std::move(metaClass), std::move(analysis), std::move(definition)});
}

}  // namespace soca
