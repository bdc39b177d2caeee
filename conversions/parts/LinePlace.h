// Places in a file, for clients that show them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"

namespace soca {

// A part of the file that was read, usually of one line. All are one-based, columns count UTF-16
// code units, and `endColumn` is the one after it. Line 0 is an unknown place.
struct LinePlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  std::uint64_t endColumn = 0;
  std::uint64_t endLine = 0;
};

// Another place that belongs to what is reported. The text is in UTF-8.
struct RelatedPlace : LinePlace {
  std::string text;
  // The words before the lines of such places: "referred to in". Empty if these are not listed.
  std::string_view phrase;
  // The same place in the text after the update; unknown if it is not there, or not requested.
  LinePlace newPlace;
};

// The largest number of other places that are reported of one thing. Only references and default
// values exceed it.
inline constexpr std::size_t mostPlaces = 50;

LinePlace placeOf(const Extent& extent);
LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name);

}  // namespace soca
