// The code analyzer: from a class file to its syntax tree.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/Config.h"
#include "platform/text/UString.h"

namespace ca {

// A file that cannot be analysed: it cannot be read, is no regular file, is larger than
// `maximumFileSize`, or is nested too deeply. `what` is the reason, in UTF-8.
class InvalidAnalysisException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Options of an analysis.
struct AnalysisOptions {
  std::shared_ptr<CodeGenerationSupport> codeGeneration;
  std::shared_ptr<void> unused;
  std::uint64_t flags = 0;
  std::shared_ptr<config::Config> config;
  std::vector<std::string> arguments;
};

class Analyzer {
 public:
  virtual ~Analyzer() = default;

  // Reads and analyses the file at the native path `path`, or the overlay text that this thread has
  // set for it. The result may outlive the analyzer. `directory` is not used.
  //
  // Throws InvalidAnalysisException; a syntax error is no failure.
  virtual std::shared_ptr<AnalysisResult> analyze(const fl::ustring& path,
                                                  const fl::ustring& directory,
                                                  const AnalysisOptions& options) = 0;
};

std::unique_ptr<Analyzer> createSingleFileAnalyzer();

// Larger files are not analysed. In bytes.
inline constexpr std::uint64_t maximumFileSize = std::uint64_t{256} << 20U;

// Analyses a text of no file. Throws InvalidAnalysisException if the nesting is too deep.
std::shared_ptr<AnalysisResult> analyzeText(fl::ustring text);

}  // namespace ca
