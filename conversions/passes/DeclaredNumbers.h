// The numbers of declarations with equal names, in the text as it was read.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "conversions/Conversions.h"
#include "model/SourcePosition.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// The id of a conversion holds the number of its declaration if there are several of that name. A
// later pass would count anew, because earlier ones deleted some of them.
class DeclaredNumbers {
 public:
  explicit DeclaredNumbers(const ca::AnalysisResult& analysis);

  // Gives the conversion of a later pass, with its place in the text as it was read, the id that it
  // would have had in the first pass.
  void correctId(Conversion& conversion) const;

 private:
  using Places = std::vector<SourcePosition>;

  const Places* placesOf(const Conversion& conversion) const;

  // In UTF-8.
  std::unordered_map<std::string, Places> properties_;
  std::unordered_map<std::string, Places> methods_;
  Places emptyBlocks_;
};

}  // namespace soca
