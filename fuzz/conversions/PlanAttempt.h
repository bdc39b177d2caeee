// Plans that may fail, and the ids of their conversions.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "service/PlannedClass.h"

namespace soca::fuzz {

// A plan, or its failure.
struct PlanAttempt {
  std::optional<PlannedClass> planned;
  // An id, or a text of its own for what the program reports without an exception.
  std::string failure;
};

// Throws what no update may throw.
PlanAttempt attemptPlan(const std::function<PlannedClass()>& plan);

// A plan of the class with its present text, whose edits are made like those of `planned`.
PlannedClass planLike(const PlannedClass& planned);

// The id without the number of the declaration or block. In UTF-8.
std::string plainId(const std::string& id);
// Those of all conversions of the class.
std::vector<std::string> plainIds(const PlannedClass& planned);

}  // namespace soca::fuzz
