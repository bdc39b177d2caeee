// The shortest edit script between two short sequences.
#pragma once

#include <cstdint>
#include <vector>

namespace soca {

enum class StepType { keepLine, deleteLine, insertLine };

// The steps from `oldIds` to `newIds`, from first to last, with the fewest deletions and
// insertions. Time and memory are proportional to the lengths times their difference.
std::vector<StepType> shortestScript(const std::vector<std::uint32_t>& oldIds,
                                     const std::vector<std::uint32_t>& newIds);

}  // namespace soca
