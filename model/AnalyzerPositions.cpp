#include "model/AnalyzerPositions.h"

namespace soca {
namespace {

// The halves of a packed pair.
std::uint32_t lowHalf(std::uint64_t pair) { return static_cast<std::uint32_t>(pair); }
std::uint32_t highHalf(std::uint64_t pair) { return static_cast<std::uint32_t>(pair >> 32U); }

}  // namespace

SourcePosition makePosition(const ca::AnalysisResult& analysis, std::uint32_t position,
                            bool pastEnd) {
  const std::uint64_t lineAndColumn = analysis.getLineAndColumn(position);
  // Both are one-based: the column of a character, read as zero-based, is the place after it.
  const std::uint64_t line = lowHalf(lineAndColumn);
  const std::uint64_t column = highHalf(lineAndColumn);
  return {line - 1, pastEnd ? column : column - 1};
}

Extent makeExtentFromPair(const ca::AnalysisResult& analysis, std::uint64_t pair) {
  return {makePosition(analysis, lowHalf(pair), false),
          makePosition(analysis, highHalf(pair), true)};
}

Extent makeExtentOfNode(const ca::AnalysisResult& analysis, const ca::astapi::Node& node) {
  const auto first = lowHalf(ca::astapi::getFirstPositionInSubtree(node));
  const auto last = lowHalf(ca::astapi::getLastPositionInSubtree(node));
  return {makePosition(analysis, first, false), makePosition(analysis, last, true)};
}

Extent makeExtentOfToken(const ca::AnalysisResult& analysis, std::uint32_t position,
                         std::size_t length) {
  const std::uint32_t last = position + static_cast<std::uint32_t>(length) - 1;
  return {makePosition(analysis, position, false), makePosition(analysis, last, true)};
}

}  // namespace soca
