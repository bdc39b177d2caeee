// Converts the analyzer's positions to lines and columns; all conversions are here.
#pragma once

#include <cstdint>

#include "model/Extent.h"
#include "model/SourcePosition.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// The place of the character at `position`, or with `pastEnd` the place just after it on its line.
SourcePosition makePosition(const ca::AnalysisResult& analysis, std::uint32_t position,
                            bool pastEnd);

// The extent of two characters and all text between them; `pair` has the position of the first in
// its low half and that of the last in its high half.
Extent makeExtentFromPair(const ca::AnalysisResult& analysis, std::uint64_t pair);

// The extent of the node's subtree.
Extent makeExtentOfNode(const ca::AnalysisResult& analysis, const ca::astapi::Node& node);

// The extent of a token of `length` code units, at least one, that begins at `position`.
Extent makeExtentOfToken(const ca::AnalysisResult& analysis, std::uint32_t position,
                         std::size_t length);

}  // namespace soca
