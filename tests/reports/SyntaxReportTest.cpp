#include "reports/text/SyntaxReport.h"

#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"

namespace soca::cli {
namespace {

std::string reportOf(const fl::ustring& text, std::size_t limit = 100) {
  return formatSyntaxErrors("f", *ca::analyzeText(text), limit);
}

std::string lineOf(const std::string& report, int number) {
  std::size_t start = 0;
  for (; number > 0; --number) start = report.find('\n', start) + 1;
  return report.substr(start, report.find('\n', start) - start);
}

TEST(SyntaxReport, CaretIsBelowTheError) {
  // Tabs stay tabs, and a character of two code units is one blank wide.
  const std::string report = reportOf(u"f = '\U0001F600';\n\tx('\U0001F600', \u00e4 = );\r\n");
  EXPECT_EQ(lineOf(report, 0).substr(0, 17), "f:2:14: error: ex") << report;
  EXPECT_EQ(lineOf(report, 1), "    2 | \tx('\U0001F600', \u00e4 = );");
  EXPECT_EQ(lineOf(report, 2), "      | \t           ^");
}

TEST(SyntaxReport, LongLinesAreCut) {
  const std::string report = reportOf(fl::ustring(5000, u'a') + u" = (;" + fl::ustring(5000, u'%'));
  EXPECT_LT(report.size(), 600);
  EXPECT_EQ(lineOf(report, 1).substr(0, 12), "    1 | ...a");
  EXPECT_EQ(lineOf(report, 1)[lineOf(report, 2).find('^')], ';') << report;
}

TEST(SyntaxReport, ControlCharactersAreNotPrinted) {
  EXPECT_EQ(lineOf(reportOf(u"x = \x1b[31m '\x9F\xA0';\n"), 1),
            "    1 | x = \xEF\xBF\xBD[31m '\xEF\xBF\xBD\xC2\xA0';");
}

TEST(SyntaxReport, SomeOfManyAreShown) {
  fl::ustring text;
  for (int i = 0; i < 20; ++i) text += u"x = (;\n";
  const std::string report = reportOf(text, 3);
  EXPECT_NE(report.find("f:3:6: error: "), std::string::npos) << report;
  EXPECT_EQ(report.find("f:4:"), std::string::npos) << report;
  EXPECT_TRUE(report.ends_with("f: and 17 more errors\n")) << report;
}

}  // namespace
}  // namespace soca::cli
