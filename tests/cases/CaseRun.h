// Runs a case through the service, on files.
#pragma once

#include <map>
#include <string>

#include "tests/cases/CaseFile.h"

namespace soca::testing {

// What a case gives, as the sections that it should have for it.
struct CaseOutcome {
  std::map<std::string, std::string> sections;
  // What an update of the updated text does that it should not; empty if it does nothing.
  std::string again;
};

// Writes the case's class files to a folder of their own, which becomes the class path, updates the
// class, makes the reports that the case has sections for, and updates the updated files.
CaseOutcome runCase(const Case& testCase);

// Whether the section tells what to do, rather than what comes of it.
bool isInput(const Section& section);

}  // namespace soca::testing
