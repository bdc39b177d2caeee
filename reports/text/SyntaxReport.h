// Syntax errors in the form for users.
//
//   pkg/Mixer.vlm:14:9: error: expected `end` to close `methods`, found end of file
//      14 |         flag = obj.Fixed
//         |         ^
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// At most `limit` of the analysis's errors, and the number of further ones. `file` is the name
// before each error. Lines and columns are one-based, columns in UTF-16 code units. Of a long line
// only the part around the error is shown.
std::string formatSyntaxErrors(std::string_view file, const ca::AnalysisResult& analysis,
                               std::size_t limit);

}  // namespace soca
