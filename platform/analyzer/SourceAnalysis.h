// The analyzer's own analysis result.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/parser/Parser.h"
#include "platform/analyzer/text/LineTable.h"
#include "platform/analyzer/text/TextNames.h"
#include "platform/analyzer/tree/Arena.h"

namespace ca {

class SourceAnalysis final : public AnalysisResult, private lf::astapi::BodyReader<astapi::CA> {
 public:
  explicit SourceAnalysis(fl::ustring text);
  // The known functions may be null; they are used only by the constructor.
  explicit SourceAnalysis(fl::filesystem::SourceFileText file,
                          const KnownFunctions* known = nullptr);
  // A text that is shared with others; never null.
  explicit SourceAnalysis(std::shared_ptr<const fl::ustring> text,
                          const KnownFunctions* known = nullptr);

  bool hasSyntaxError() const override { return !diagnostics_.empty(); }
  std::uint64_t getLineAndColumn(std::uint32_t position) const override;
  fl::ustring getSourceText(bool canonical) const override;
  fl::ustring getNodeText(const astapi::Node& node, bool canonical) const override;
  fl::ustring getSubtreeText(const astapi::Node& node) const override;
  const astapi::Node* getRootNode() const override { return root_; }
  ClassdefHandle getClassdef() const override { return classdef_; }
  fl::ustring_view sourceTextView() const override { return *text_; }
  fl::ustring_view nodeTextView(const astapi::Node& node) const override;
  std::shared_ptr<const fl::ustring> sharedSourceText() const override { return text_; }
  std::uint32_t lineStart(std::uint32_t line) const override { return lines_.startOf(line); }
  const std::vector<Diagnostic>& diagnostics() const override { return diagnostics_; }
  const std::optional<fl::filesystem::FileState>& file() const override { return file_; }
  KnownFunctions knownFunctions() const override;

  // Whether the text is nested more deeply than the limit. The tree then holds what is before that
  // place: enough to read declarations, but not a basis for changes.
  bool isTooDeep() const { return isTooDeep_; }

 private:
  void take(Parser::Result result);
  void read(const astapi::FunctionDefinition& function) const override;

  SourceAnalysis(std::shared_ptr<const fl::ustring> text, const KnownFunctions* known,
                 ParserMemory& memory);

  std::shared_ptr<const fl::ustring> text_;
  LineTable lines_;
  mutable Arena arena_;
  // For the bodies that are read later.
  mutable std::mutex mutex_;
  TextNames names_;
  const astapi::Node* root_ = nullptr;
  ClassdefHandle classdef_ = nullptr;
  std::vector<Diagnostic> diagnostics_;
  std::optional<fl::filesystem::FileState> file_;
  bool isTooDeep_ = false;
};

}  // namespace ca
