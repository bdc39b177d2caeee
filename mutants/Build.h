// The build of the copy.
#pragma once

#include <filesystem>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

// Builds the copy and its tests, as far as they compile. The result is the mistakes in the lines
// that the compiler's messages name, or else in their files; it is empty if all was built. Throws
// if the build fails elsewhere.
std::vector<Mistake> buildCopy(const std::filesystem::path& copy,
                               const std::vector<Mistake>& mistakes);

}  // namespace mutants
