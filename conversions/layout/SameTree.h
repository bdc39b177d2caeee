// Checks that laying lines apart changed nothing but the lines.
#pragma once

#include <vector>

#include "conversions/layout/LineBreaks.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// Whether the text with the breaks has no syntax errors, the same tree with the same words, and the
// same comments of the same kind. Does not depend on how the breaks were found. `before` and
// `after` are the analyses of the text without and with the breaks.
bool haveSameTree(const ca::AnalysisResult& before, const ca::AnalysisResult& after,
                  const std::vector<LineBreak>& breaks);

}  // namespace soca
