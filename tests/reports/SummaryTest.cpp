#include "reports/SummaryText.h"

#include <gtest/gtest.h>

namespace soca {
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
  EXPECT_EQ(formatSummary(summary, TenseType::changed, NumbersType::service),
            "looked at 3 classes: 1 changed, 0 stay as they are, 1 refused, 1 failed; 3 findings");
}

Conversion leftOut(ConversionKindType kind, const char* reason) {
  Conversion conversion;
  conversion.kind = kind;
  conversion.leftOut = ConversionReason{reason, {}, {}};
  return conversion;
}

TEST(Summary, CountsOfAClassAreUnpackedAsTheyWere) {
  ClassOutcome outcome;
  outcome.update.className = "a.b.C";
  outcome.update.conversions = {leftOut(ConversionKindType::rename, "soca:StillReferenced"),
                                leftOut(ConversionKindType::mixins, "soca:NotTried"),
                                leftOut(ConversionKindType::rename, "soca:StillReferenced")};
  outcome.update.conversionCounts[ConversionKindType::logical] = 3;
  outcome.update.findings.resize(2);
  outcome.update.findings.front().id = outcome.update.findings.back().id = "Rare";
  const auto packedOf = [&] { return pack(ClassCounts(outcome)); };
  EXPECT_EQ(pack(unpackCounts(packedOf())), packedOf()) << "neither changed nor in a package";
  outcome.update.changed = true;
  EXPECT_EQ(pack(unpackCounts(packedOf())), packedOf());
  outcome.update.refusal = "no";
  outcome.update.className = "C";
  EXPECT_EQ(pack(unpackCounts(packedOf())), packedOf()) << "left out without a reason";
  Summary summary;
  summary.add(ClassCounts(outcome));
  summary.remove(unpackCounts(packedOf()));
  EXPECT_EQ(summary.classes + summary.refused + summary.findings + summary.leftOutCount(), 0U);
}

// Three classes: one that changes in part, one that is refused, and one that is written in vain.
Summary summaryOfPackages() {
  Summary summary;
  summary.countsPackages = true;
  ClassOutcome outcome;
  outcome.update.className = "a.b.C";
  outcome.update.changed = true;
  outcome.update.conversionCounts[ConversionKindType::logical] = 1234;
  outcome.update.conversions = {leftOut(ConversionKindType::rename, "soca:StillReferenced"),
                                leftOut(ConversionKindType::mixins, "soca:StillReferenced"),
                                leftOut(ConversionKindType::rename, "soca:StillReferenced"),
                                leftOut(ConversionKindType::mixins, "soca:NotTried")};
  outcome.update.findings.resize(1);
  outcome.update.findings.front().id = "ImplSignatureMismatch";
  summary.add(ClassCounts(outcome));
  summary.add(ClassCounts(outcome));
  summary.removeUnwritten(ClassCounts(outcome));
  summary.addFailure({.className = "a.b.C", .id = "soca:WriteFailed"});
  outcome.update.className = "D";
  outcome.update.conversions.clear();
  outcome.update.refusal = "no";
  outcome.update.conversionCounts[ConversionKindType::logical] = 2;
  summary.add(ClassCounts(outcome));
  summary.add(ClassCounts(outcome));
  summary.remove(ClassCounts(outcome));
  summary.addUndecided({.className = "D"});
  summary.addSkipped({.className = "E", .id = "VELUM:system:Analyzer:PFileExists"});
  return summary;
}

TEST(Summary, GroupsTheNumbersOfTheProgram) {
  const Summary summary = summaryOfPackages();
  const std::string reasons =
      "  left out\n    6 soca:StillReferenced    2 the class is refused\n    2 soca:NotTried\n";
  const std::string rest =
      "  findings\n    3 ImplSignatureMismatch\n  failed\n    1 WriteFailed\n"
      "  undecided\n    1 SuperClassUnresolved\n  skipped\n    1 PFileExists\n";
  EXPECT_EQ(formatNumbers(summary, GroupType::kinds, 60),
            "  conversions           found   made  left out\n"
            "    attributes/logical  1,236  1,234         2\n"
            "    mixins                  4      0         4\n"
            "    impl/rename             4      0         4\n"
            "    total               1,244  1,234        10\n" +
                reasons + rest);
  EXPECT_EQ(formatNumbers(summary, GroupType::reasons, 60),
            "  conversions  found   made  left out\n"
            "    total      1,244  1,234        10\n"
            "  left out                conversions\n"
            "    soca:StillReferenced            6\n"
            "      impl/rename                   4\n"
            "      mixins                        2\n"
            "    the class is refused            2\n"
            "      attributes/logical            2\n"
            "    soca:NotTried                   2\n"
            "      mixins                        2\n" +
                rest);
  EXPECT_EQ(formatNumbers(summary, GroupType::packages, 61),
            "  packages  classes  found   made  left out  findings  failed\n"
            "    (none)        2      2      0         2         1       2\n"
            "    a.b           2  1,242  1,234         8         2       1\n"
            "    total         4  1,244  1,234        10         3       3\n" +
                reasons + rest);
  EXPECT_EQ(formatNumbers(summary, GroupType::kinds, 30).substr(0, 96),
            "  conversions\n"
            "    attributes/logical\n"
            "      1,236 found, 1,234 made,\n"
            "      2 left out\n"
            "    mixins\n");
  EXPECT_EQ(formatSummary(summary, TenseType::changed, NumbersType::program),
            "looked at 3 classes: 1 changed, 0 stay as they are, 1 refused, 1 failed; 1 undecided; "
            "1 other class skipped; 8 conversions left out; 3 findings");
  EXPECT_EQ(formatNumbers(Summary(), GroupType::reasons, 60), "");
}

}  // namespace
}  // namespace soca
