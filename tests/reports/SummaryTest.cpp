#include "reports/Summary.h"

#include <gtest/gtest.h>

namespace soca::cli {
namespace {

TEST(Summary, CountsByKindInLinesThatFit) {
  Summary summary;
  EXPECT_EQ(formatDetails(summary, 80), "");
  ClassOutcome outcome;
  outcome.update.changed = true;
  outcome.update.conversionCounts[ConversionKindType::logical] = 3;
  outcome.update.conversionCounts[ConversionKindType::rename] = 12;
  outcome.update.findings.resize(3);
  for (Finding& finding : outcome.update.findings) finding.id = "Rare";
  outcome.update.findings[1].id = "ImplSignatureMismatch";
  summary.add(ClassCounts(outcome));
  outcome.update.refusal = "no";
  outcome.update.findings.clear();
  summary.add(ClassCounts(outcome));
  summary.addFailure({.id = "VELUM:system:Analyzer:SyntaxError"});
  EXPECT_EQ(formatDetails(summary, 80),
            "  conversions: 12 impl/rename, 3 attributes/logical\n"
            "  findings: 2 Rare, 1 ImplSignatureMismatch\n"
            "  failures: 1 SyntaxError\n");
  EXPECT_EQ(formatDetails(summary, 36),
            "  conversions: 12 impl/rename,\n"
            "               3 attributes/logical\n"
            "  findings: 2 Rare,\n"
            "            1 ImplSignatureMismatch\n"
            "  failures: 1 SyntaxError\n");
  EXPECT_EQ(formatSummary(summary, TenseType::changed),
            "looked at 3 classes: 1 changed, 0 stay as they are, 1 refused, 1 failed; 3 findings");
}

}  // namespace
}  // namespace soca::cli
