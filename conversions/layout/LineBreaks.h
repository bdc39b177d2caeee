// Line breaks that give each member and each statement of a line a line of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca {

// The blanks before an item of a line, with a comma before them, and the line end and indentation
// in place of them.
struct LineBreak {
  // In UTF-16 code units of the text; there may be no blanks.
  std::size_t offset = 0;
  std::size_t length = 0;
  fl::ustring text;
  // Zero-based.
  std::uint64_t line = 0;
};

// The breaks that lay these zero-based lines apart, in the order of the text. What begins a new
// line is a member, a statement, a clause or an `end`. So comments, the identifier of a `catch` and
// the words of a command stay with the text before them, and so does a separator, except for a
// comma, which means the same as a line end. The lines end like the one that is broken, and are
// indented like those of the nearest block. `analysis` must be of a class without syntax errors.
//
//   function f = g(x), f = true; end   ->   function f = g(x)
//                                               f = true;
//                                           end
std::vector<LineBreak> findLineBreaks(const ca::AnalysisResult& analysis,
                                      const std::set<std::uint64_t>& lines);

}  // namespace soca
