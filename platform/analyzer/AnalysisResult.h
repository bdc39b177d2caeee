// The result of an analysis: the text of a file, its syntax tree and its syntax errors.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/analyzer/Diagnostic.h"
#include "platform/analyzer/text/KnownFunctions.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/UString.h"

namespace ca {

// A handle of the class definition; null when the file holds no class.
using ClassdefHandle = const astapi::Classdef*;

// Owns the text and all nodes, which live as long as it does. Read-only, and may be shared by
// threads. A position is the index of a UTF-16 code unit in the text.
class AnalysisResult {
 public:
  virtual bool hasSyntaxError() const = 0;
  // One-based line in the low half, one-based column in the high half; the column counts UTF-16
  // code units. `position` may also be the one just after the text, and the one before the first
  // character, at which an empty subtree at the start of the text ends: line 1, column 0.
  virtual std::uint64_t getLineAndColumn(std::uint32_t position) const = 0;
  // The file's exact text; the flag has no effect.
  virtual fl::ustring getSourceText(bool canonical) const = 0;
  // The exact text of the subtree under the node; the flag has no effect.
  virtual fl::ustring getNodeText(const astapi::Node& node, bool canonical) const = 0;
  // The exact text of the subtree; with the root node the whole file.
  virtual fl::ustring getSubtreeText(const astapi::Node& node) const = 0;
  virtual const astapi::Node* getRootNode() const = 0;
  virtual ClassdefHandle getClassdef() const = 0;

  // The texts of the two above without a copy, valid as long as the result.
  virtual fl::ustring_view sourceTextView() const = 0;
  virtual fl::ustring_view nodeTextView(const astapi::Node& node) const = 0;
  // The file's text, for a caller that keeps it longer than the result; never null.
  virtual std::shared_ptr<const fl::ustring> sharedSourceText() const = 0;
  // The position of the first code unit of a zero-based line of the text.
  virtual std::uint32_t lineStart(std::uint32_t line) const = 0;
  // The syntax errors, in the order of the text.
  virtual const std::vector<Diagnostic>& diagnostics() const = 0;
  // The file that the text was read from, with its stamp at that time: a file with the same stamp
  // has the same text. Empty for an overlay text, for a text of no file, and for a file that was
  // modified so recently that a later change might leave the stamp the same.
  virtual const std::optional<fl::filesystem::FileState>& file() const = 0;

  // The functions that the text defines, for the analysis of a text that shares most of them. None
  // if there are syntax errors.
  virtual KnownFunctions knownFunctions() const = 0;

  virtual ~AnalysisResult() = default;

 protected:
  AnalysisResult() = default;
  AnalysisResult(const AnalysisResult&) = delete;
  AnalysisResult& operator=(const AnalysisResult&) = delete;
};

}  // namespace ca
