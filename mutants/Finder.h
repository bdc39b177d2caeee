// Finds the mistakes that can be made in a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

const char* nameOf(KindType kind);

// The mistakes in the text of a formatted C++ source, `file`. The types are not known, so that some
// of them do not compile.
std::vector<Mistake> findMistakes(const std::string& file, std::string_view text);

}  // namespace mutants
