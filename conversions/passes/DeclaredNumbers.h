// The names and numbers of declarations in the text as it was read.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "conversions/Conversions.h"
#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// A conversion of a later pass has the names that earlier ones gave its members, and would count
// the declarations anew, because earlier ones deleted some of them.
class DeclaredNumbers {
 public:
  explicit DeclaredNumbers(const ca::AnalysisResult& analysis);

  // Whether a name is declared more than once, so that only exact places tell which one is meant.
  bool haveDuplicates() const { return haveDuplicates_; }

  // Gives the conversion of a later pass, with its place in the text as it was read, the member,
  // the place and the id that it would have had in the first pass. If several declarations have its
  // name, and none is at its place, it is that of the next one.
  void correct(Conversion& conversion) const;

 private:
  // By name, in UTF-8. The places are those of the names, in the order of the text.
  using Declarations = std::unordered_map<std::string, std::vector<Extent>>;

  struct Found {
    std::string name;
    std::size_t number = 0;
    Extent place;
  };

  template <class Node>
  void add(const ca::AnalysisResult& analysis, const Node& declaration, Declarations& declarations);
  void correctBlock(Conversion& conversion) const;
  static void findNext(const Declarations& declarations, const std::string& name,
                       const SourcePosition& position, Found& found);

  Declarations properties_;
  Declarations methods_;
  // The starts of the empty blocks.
  std::vector<SourcePosition> emptyBlocks_;
  bool haveDuplicates_ = false;
};

}  // namespace soca
