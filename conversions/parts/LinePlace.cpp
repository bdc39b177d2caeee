#include "conversions/parts/LinePlace.h"

#include "model/AnalyzerPositions.h"

namespace soca {

LinePlace placeOf(const Extent& extent) {
  return {extent.start.line + 1, extent.start.column + 1, extent.end.column + 1,
          extent.end.line + 1};
}

LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name) {
  return placeOf(makeExtentOfNode(analysis, name));
}

}  // namespace soca
