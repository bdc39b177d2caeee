// Runs a case by the service, on files.
#pragma once

#include <map>
#include <set>
#include <string>

#include "tests/cases/CaseFile.h"

namespace soca::testing {

// The results of a case, as the sections that it should have.
struct CaseOutcome {
  std::map<std::string, std::string> sections;
  // The full ids of the findings.
  std::set<std::string> findings;
  // The unexpected effect of an update of the updated text; empty if there is none.
  std::string again;
};

// Writes the case's class files to a temporary folder, which becomes the class path, updates the
// class, makes the reports for which the case has sections, and updates the updated files.
CaseOutcome runCase(const Case& testCase);

// Whether the section is an input of the case, not a result.
bool isInput(const Section& section);

}  // namespace soca::testing
