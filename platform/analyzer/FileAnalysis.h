// Files and overlay texts as analyses.
#pragma once

#include <memory>
#include <string>

#include "platform/analyzer/SourceAnalysis.h"

namespace ca {

// Analyses the file at the native path `path` (UTF-8), or the overlay text that this thread has set
// for it. Nesting that is too deep is no failure here: see SourceAnalysis::isTooDeep. Each thread
// keeps its last analysis and returns it again while the file is unchanged. Of a file that the
// thread has analysed before, function bodies are parsed when needed.
//
// `known` are functions that an overlay text may share with another text; null for none.
//
// Throws fl::filesystem::ReadError if the file cannot be read.
std::shared_ptr<SourceAnalysis> analyzeFile(const std::string& path,
                                            const KnownFunctions* known = nullptr);

// Drops the thread's last analysis, before work that needs much memory.
void forgetLastAnalysis();

}  // namespace ca
