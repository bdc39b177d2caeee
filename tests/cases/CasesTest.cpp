// Every case below tests/cases and tests/known, each as a separate test.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "reports/explanations/MessageExplanations.h"
#include "tests/Places.h"
#include "tests/cases/CaseFile.h"
#include "tests/cases/CaseRun.h"

namespace soca::testing {
namespace {

const std::vector<Case>& allCases() {
  static const std::vector<Case> cases = [] {
    std::vector<Case> found = findCases(projectPath("tests/cases"));
    for (Case& known : findCases(projectPath("tests/known"))) found.push_back(std::move(known));
    return found;
  }();
  return cases;
}

bool isRewriting() { return std::getenv("SOCA_REWRITE_CASES") != nullptr; }

// Replaces the expected sections of the case by the results.
void rewrite(const Case& testCase, const CaseOutcome& outcome) {
  Case changed = testCase;
  std::erase_if(changed.sections, [&](const Section& section) {
    return !isInput(section) && !outcome.sections.contains(section.name);
  });
  for (const auto& [name, text] : outcome.sections) {
    const auto found = std::ranges::find(changed.sections, name, &Section::name);
    if (found != changed.sections.end()) {
      found->text = text;
    } else {
      changed.sections.push_back({name, text});
    }
  }
  writeCase(changed);
}

void compare(const Case& testCase, const CaseOutcome& outcome) {
  for (const Section& section : testCase.sections) {
    if (isInput(section)) continue;
    const auto found = outcome.sections.find(section.name);
    if (found == outcome.sections.end()) {
      ADD_FAILURE() << "expected, and not there: " << section.name;
    } else {
      EXPECT_EQ(found->second, section.text) << section.name;
    }
  }
  for (const auto& [name, text] : outcome.sections) {
    EXPECT_NE(testCase.find(name), nullptr) << "not expected: " << name << '\n' << text;
  }
}

class Cases : public ::testing::TestWithParam<Case> {};

TEST_P(Cases, Hold) {
  const Case& testCase = GetParam();
  SCOPED_TRACE(testCase.path.string() + ": " + testCase.title);
  const CaseOutcome outcome = runCase(testCase);
  if (isRewriting()) {
    rewrite(testCase, outcome);
  } else {
    compare(testCase, outcome);
  }
  EXPECT_EQ(!outcome.again.empty(), testCase.find("again") != nullptr)
      << "an update of the updated text: " << outcome.again;
}

INSTANTIATE_TEST_SUITE_P(All, Cases, ::testing::ValuesIn(allCases()),
                         [](const auto& test) { return test.param.name; });

// Every message must be raised by the code and be shown by a case.
TEST(CasesOfAllMessages, EachIdHasACase) {
  std::set<std::string> raised;
  for (const Case& testCase : allCases()) {
    const CaseOutcome outcome = runCase(testCase);
    raised.insert(outcome.findings.begin(), outcome.findings.end());
    const auto error = outcome.sections.find("error");
    if (error != outcome.sections.end()) {
      raised.insert(error->second.substr(0, error->second.find(": ")));
    }
  }
  for (const auto& message : messageExplanations()) {
    EXPECT_TRUE(raised.contains(std::string(message.fullId))) << message.fullId;
  }
}

}  // namespace
}  // namespace soca::testing
