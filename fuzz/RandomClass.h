// Random classes without syntax errors, with many constructs that the rules convert.
#pragma once

#include <cstdint>
#include <vector>

#include "fuzz/AnalysisProperties.h"
#include "fuzz/ClassFiles.h"

namespace soca::fuzz {

struct RandomClass {
  ClassFile file;
  // The places of its identifiers, in the order of the text.
  std::vector<Stretch> identifiers;
};

// A class and up to three more, some of them its superclasses, the same ones for the same seed. The
// first is the class to update. Their names end with `suffix`. Half of the superclasses are of
// `family`, if it is not empty, and many methods are those that the rules convert.
std::vector<RandomClass> makeRandomClasses(std::uint64_t seed, const std::string& suffix = "",
                                           const std::vector<fl::ustring>& family = {});

}  // namespace soca::fuzz
