// Failures as people read them.
#pragma once

#include <string>
#include <vector>

#include "reports/ReportOutput.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// "soca: <id>: <message>", the lines in question, and the hints.
void printFailure(ReportOutput& output, const Failure& failure);

// Each hint in a line of its own, with a line end.
std::string hintLines(const std::vector<std::string>& hints);

}  // namespace soca
