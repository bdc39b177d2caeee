#include "reports/Summary.h"

#include <gtest/gtest.h>

namespace soca::cli {
namespace {

TEST(Summary, CountsByKindInLinesThatFit) {
  Summary summary;
  EXPECT_EQ(formatDetails(summary, 80), "");
  ClassOutcome outcome;
  outcome.update.changed = true;
  outcome.update.editCounts[RuleFamilyType::attributes] = 3;
  outcome.update.editCounts[RuleFamilyType::impl] = 12;
  outcome.update.findings = {{.id = "a:ImplSignatureMismatch"}, {.id = "Rare"}, {.id = "Rare"}, {}};
  summary.add(ClassCounts(outcome));
  outcome.update.refusal = "no";
  outcome.update.findings.clear();
  summary.add(ClassCounts(outcome));
  summary.addFailure({.id = "VELUM:system:Analyzer:SyntaxError"});
  EXPECT_EQ(formatDetails(summary, 80),
            "  conversions: 12 impl, 3 attributes\n"
            "  findings: 2 Rare, 1 ImplSignatureMismatch, 1 other\n"
            "  failures: 1 SyntaxError\n");
  EXPECT_EQ(formatDetails(summary, 36),
            "  conversions: 12 impl,\n"
            "               3 attributes\n"
            "  findings: 2 Rare,\n"
            "            1 ImplSignatureMismatch,\n"
            "            1 other\n"
            "  failures: 1 SyntaxError\n");
  EXPECT_EQ(formatSummary(summary, TenseType::changed),
            "looked at 3 classes: 1 changed, 0 stay as they are, 1 refused, 1 failed; 4 findings");
}

}  // namespace
}  // namespace soca::cli
