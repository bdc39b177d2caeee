// The shortest way from one short sequence to another.
#pragma once

#include <cstdint>
#include <vector>

namespace soca {

enum class StepType { keepLine, deleteLine, insertLine };

// The steps that make `newIds` of `oldIds`, from front to back, with as few deletions and
// insertions as possible. Time and memory grow with the product of the lengths and their
// difference.
std::vector<StepType> shortestScript(const std::vector<std::uint32_t>& oldIds,
                                     const std::vector<std::uint32_t>& newIds);

}  // namespace soca
