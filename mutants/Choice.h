// Which of the possible mistakes are made.
#pragma once

#include <cstddef>
#include <set>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

// Chooses up to `count` of the mistakes, without those whose numbers are in `useless`: as evenly as
// possible of all files, and of all kinds in each. The same seed gives the same ones.
std::vector<Mistake> choose(const std::vector<Mistake>& mistakes, const std::set<unsigned>& useless,
                            std::size_t count, unsigned seed);

}  // namespace mutants
