// The names and numbers of declarations in the text as it was read.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>

#include "conversions/Conversions.h"
#include "model/SourcePosition.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// A conversion of a later pass has the names that earlier ones gave its members, and would count
// the declarations anew, because earlier ones deleted some of them.
class DeclaredNumbers {
 public:
  explicit DeclaredNumbers(const ca::AnalysisResult& analysis);

  // Gives the conversion of a later pass, with its place in the text as it was read, the member and
  // the id that it would have had in the first pass.
  void correct(Conversion& conversion) const;

 private:
  struct Declaration {
    // In UTF-8; empty for a block.
    std::string name;
    std::size_t number = 1;
  };

  using Declarations = std::map<SourcePosition, Declaration>;
  using Counts = std::unordered_map<std::string, std::size_t>;

  template <class Node>
  static void add(const ca::AnalysisResult& analysis, const Node& declaration,
                  Declarations& declarations, Counts& counts);

  // By the starts of their names, or of the blocks.
  Declarations properties_;
  Declarations methods_;
  Declarations emptyBlocks_;
  Counts propertyCounts_;
  Counts methodCounts_;
};

}  // namespace soca
