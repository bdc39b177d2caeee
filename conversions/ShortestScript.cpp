#include "conversions/ShortestScript.h"

#include <dtl/dtl.hpp>

namespace soca {

std::vector<StepType> shortestScript(const std::vector<std::uint32_t>& oldIds,
                                     const std::vector<std::uint32_t>& newIds) {
  constexpr bool deletionsFirst = true;
  dtl::Diff<std::uint32_t> diff(oldIds, newIds, deletionsFirst);
  diff.compose();
  std::vector<StepType> steps;
  for (const auto& [id, info] : diff.getSes().getSequence()) {
    switch (info.type) {
      case dtl::SES_DELETE:
        steps.push_back(StepType::deleteLine);
        break;
      case dtl::SES_ADD:
        steps.push_back(StepType::insertLine);
        break;
      default:
        steps.push_back(StepType::keepLine);
    }
  }
  return steps;
}

}  // namespace soca
