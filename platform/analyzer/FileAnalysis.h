// Files and overlay texts as analyses.
#pragma once

#include <memory>
#include <string>

#include "platform/analyzer/SourceAnalysis.h"

namespace ca {

// Analyses the file at the native path `path` (UTF-8), or the text that lies over it on this
// thread. Nesting that is too deep is no failure here: see SourceAnalysis::isTooDeep. The thread
// remembers its last analysis and gives it again as long as the file stays the same.
//
// Throws InvalidAnalysisException when there is nothing to analyse.
std::shared_ptr<SourceAnalysis> analyzeFile(const std::string& path);

// Lets the thread forget its last analysis, for when what follows needs much memory.
void forgetLastAnalysis();

}  // namespace ca
