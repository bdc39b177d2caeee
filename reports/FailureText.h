// Failures in the form for users.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "reports/ReportOutput.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// "soca: <id>: <message>", the source lines concerned, and the hints.
void printFailure(ReportOutput& output, const Failure& failure);

// The text of an exception that ended a run.
std::string faultText(const std::exception& fault);

// The hints, one line each with a line end.
std::string hintLines(const std::vector<std::string>& hints);

}  // namespace soca
