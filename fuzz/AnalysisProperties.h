// The properties of the analysis of any text.
#pragma once

#include <memory>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

// Throws a Violation unless all of this holds:
// - the root's text is the analysed text, and every position is converted to the line and column
//   that counting gives;
// - every node is inside the text, and without syntax errors inside its parent and apart from its
//   siblings;
// - the walk reaches each identifier once, and an identifier's texts are the text at its place;
// - diagnostics are inside the text, in its order.
void checkAnalysis(const ca::AnalysisResult& analysis, fl::ustring_view text);

// Requires that an analysis of the text of `expected` that skips the known functions has the same
// tree and the same diagnostics.
void checkSkipping(const ca::AnalysisResult& expected, const ca::KnownFunctions& known);

// The analysis of the text, checked; null for one that is nested too deeply.
std::shared_ptr<ca::AnalysisResult> analyzeChecked(const fl::ustring& text);

// A part of a text, in UTF-16 code units.
struct Stretch {
  std::size_t position = 0;
  std::size_t length = 0;

  friend auto operator<=>(const Stretch&, const Stretch&) = default;
};

// The identifiers that the walk reaches, in the order of the text.
std::vector<Stretch> identifiersOf(const ca::AnalysisResult& analysis);

}  // namespace soca::fuzz
