// What a new text has to satisfy before the program shows it as a diff or writes it.
#pragma once

#include <optional>
#include <string>

#include "platform/analyzer/AnalysisResult.h"
#include "service/UpdatePlan.h"

namespace soca::cli {

// Why the program does not take the new text of the class; nothing if it does. `updated` is the
// analysis of the new text. It has to be free of syntax errors; to have the same properties, less
// deleted companions of sets, each with the default value that it had; the same methods, renamed
// and deleted as the actions say; and all text outside the actions.
std::optional<std::string> findReasonToRefuse(const PlannedClass& planned,
                                              const ca::AnalysisResult& updated);

}  // namespace soca::cli
