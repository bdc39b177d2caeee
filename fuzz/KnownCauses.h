// The known reasons why an update may spoil a text.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "service/UpdatePlan.h"

namespace soca::fuzz {

// The title of a case in tests/known/ that explains why the update spoils this class or cannot be
// applied; empty if there is none.
std::optional<std::string_view> findKnownCause(const PlannedClass& planned);

// All titles that `findKnownCause` may return.
std::vector<std::string_view> knownCauses();

}  // namespace soca::fuzz
