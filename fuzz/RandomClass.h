// Random classes without syntax errors, with much in them that the rules convert.
#pragma once

#include <cstdint>
#include <vector>

#include "fuzz/AnalysisProperties.h"
#include "fuzz/ClassFiles.h"

namespace soca::fuzz {

struct RandomClass {
  ClassFile file;
  // Where its identifiers stand, in the order of the text.
  std::vector<Stretch> identifiers;
};

// A class and up to three more, some of them its superclasses, the same ones for the same seed. The
// first is the one to update. Their names end in `suffix`.
std::vector<RandomClass> makeRandomClasses(std::uint64_t seed, const std::string& suffix = "");

}  // namespace soca::fuzz
