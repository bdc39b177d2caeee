// Why a correct update may spoil a text.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "service/UpdatePlan.h"

namespace soca::fuzz {

// The title of a case in tests/known/ that explains why the update spoils this class, or can't be
// carried out; nothing if none does.
std::optional<std::string_view> findKnownCause(const PlannedClass& planned);

// All titles that `findKnownCause` may give.
std::vector<std::string_view> knownCauses();

}  // namespace soca::fuzz
