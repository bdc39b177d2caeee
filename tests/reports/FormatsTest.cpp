// What the formats print of conversions that are decided one by one.
#include <fmt/core.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "conversions/Findings.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/ConversionText.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

class Output : public ReportOutput {
 public:
  bool colorsOut() const override { return false; }
  void print(std::string_view text) override { data += text; }
  void printColored(std::string_view text) override { data += text; }
  void printMessages(std::string_view lines) override { messages += lines; }
  void complain(std::string_view what) override { messages.append(what).append("\n"); }
  void tell(std::string_view what) override { messages.append(what).append("\n"); }

  std::string data;
  std::string messages;
};

// A report to memory in the format of that name.
class Report {
 public:
  Report(std::string_view format, ReportOptions options)
      : options_(options), roots_({"/r"}), names_(&roots_) {
    for (const ReportFormat& each : reportFormats()) {
      if (each.name == format) report_ = each.make({&options_, &roots_, &names_, &output_});
    }
  }

  UpdateReport& operator*() { return *report_; }

  void add(const ClassOutcome& outcome) {
    if (const auto data = report_->dataOf(outcome); !data.empty()) report_->printData(data);
    report_->printNotes(report_->notesOf(outcome));
  }

  Output finish() {
    report_->finish(ExitCodeType::done);
    return output_;
  }

 private:
  ReportOptions options_;
  ClassRoots roots_;
  FileNames names_;
  Output output_;
  std::unique_ptr<UpdateReport> report_;
};

Conversion makeConversion(ConversionKindType kind, const char* member) {
  Conversion conversion;
  conversion.kind = kind;
  conversion.id = fmt::format("p.A#{}:{}", conversionKind(kind).name, member);
  conversion.member = member;
  conversion.message = "property";
  conversion.arguments = {member, "new"};
  conversion.place = {{0, 3}, {0, 5}};
  return conversion;
}

Conversion leftOut(ConversionKindType kind, const char* member, ConversionReason reason) {
  Conversion conversion = makeConversion(kind, member);
  conversion.leftOut = std::move(reason);
  conversion.pass = 0;
  return conversion;
}

ConversionReason makeReason(std::string detail, const std::vector<std::uint64_t>& lines) {
  ConversionReason reason{"soca:StillReferenced", std::move(detail), {}};
  for (const std::uint64_t line : lines) reason.places.push_back({{line, 2, 4, line}, "Here."});
  return reason;
}

TEST(Formats, TextSaysWhatIsLeftOutWhereAndWhatToDo) {
  const std::string advice =
      ". Change the references to the new name, where a negated method needs the opposite, or "
      "remove them. [soca:StillReferenced]\n";
  using enum ConversionKindType;
  Conversion block = leftOut(logical, "X", makeReason("why", {}));
  block.message = "properties";
  block.arguments = {"'X', 'Y' and 3 more"};
  const struct {
    const char* shows;
    Conversion conversion;
    std::string text;
  } rows[] = {
      {"the places", leftOut(rename, "f", makeReason("why", {12, 12, 40})),
       "method 'f' is not renamed to 'new': why (lines 12 and 40)" + advice},
      {"many places",
       leftOut(deleteObsolete, "f", makeReason("why", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10})),
       "method 'f' is not deleted: why (lines 2, 3, 4, 5, 6, 7, 8, 9 and 1 more)" + advice},
      {"one property", leftOut(positiveInteger, "X", makeReason("why", {7})),
       "the attribute PositiveInteger of property 'X' is not converted: why (line 7)" + advice},
      {"a block", block,
       "the attribute Logical of the properties 'X', 'Y' and 3 more is not converted: why" +
           advice},
      {"a set", leftOut(stringSet, "X", makeReason("", {})),
       "the set of property 'X' is not converted" + advice},
      {"an unknown reason", leftOut(mixins, "", {"soca:Unknown", "why", {}}),
       "the list of superclasses is not converted: why [soca:Unknown]\n"},
  };
  for (const auto& [shows, conversion, text] : rows) {
    ClassOutcome outcome;
    outcome.update.file = "/r/p/A.vlm";
    outcome.update.conversions = {makeConversion(mixins, ""), conversion};
    Report report("text", {});
    report.add(outcome);
    EXPECT_EQ(report.finish().messages, "/r/p/A.vlm:1: warning: " + text) << shows;
    Report asService("text", {.asService = true});
    asService.add(outcome);
    EXPECT_EQ(asService.finish().messages, "") << shows;
  }
}

TEST(Formats, TextHasTheDetailsOfFindingsAndTheirNewLines) {
  ClassOutcome outcome;
  outcome.update.file = "A.vlm";
  outcome.update.changed = true;
  Finding& finding = outcome.update.findings.emplace_back();
  finding.line = 3;
  finding.id = "Id";
  finding.text = "Method 'f' is left.";
  finding.newPlace.line = 5;
  for (std::uint64_t line = 8; line < 10; ++line) {
    finding.related.push_back({{line, 1, 2, line}, "A reference.", "referred to in", {line + 10}});
  }
  finding.furtherLines = 1500;
  const struct {
    const char* shows;
    ReportOptions options;
    const char* text;
  } rows[] = {
      {"a dry run",
       {},
       "A.vlm:3: warning: Method 'f' is left; referred to in lines 8, 9 and 1,500 more [Id]\n"},
      {"written",
       {.write = true},
       "A.vlm:5: warning: Method 'f' is left; referred to in lines 18, 19 and 1,500 more [Id]\n"},
      {"as the service",
       {.write = true, .asService = true},
       "A.vlm:3: warning: Method 'f' is left. [Id]\n"},
      {"quietly", {.quiet = true}, ""},
  };
  for (const auto& [shows, options, text] : rows) {
    Report report("text", options);
    report.add(outcome);
    EXPECT_EQ(report.finish().messages, text) << shows;
  }
}

TEST(Formats, AQuietTextHasTenLinesOfEachReason) {
  ClassOutcome outcome;
  outcome.update.file = "A.vlm";
  for (int i = 0; i < 1062; ++i) {
    outcome.update.conversions.push_back(
        leftOut(ConversionKindType::mixins, "", {i < 3 ? "soca:Rare" : "soca:Often", "", {}}));
  }
  const auto messagesOf = [&](ReportOptions options) {
    Report report("text", options);
    report.add(outcome);
    for (int i = 0; i < 12; ++i)
      (*report).addFailure({.className = "A", .id = "x:Failed", .message = "'A'"});
    return report.finish().messages;
  };
  const std::string quiet = messagesOf({.quiet = true});
  EXPECT_EQ(std::ranges::count(quiet, '\n'), 3 + 10 + 10 + 2) << quiet;
  EXPECT_TRUE(quiet.ends_with("\n  and 1,049 more [soca:Often]\n  and 2 more [x:Failed]\n"));
  const std::string summary = messagesOf({.quiet = true, .summary = true});
  EXPECT_EQ(std::ranges::count(summary, '\n'), 10 + 1) << summary;
  EXPECT_EQ(std::ranges::count(messagesOf({.quiet = true, .asService = true}), '\n'), 12);
}

// The findings are those of tests/rules/FindingsTest.cpp.
TEST(Formats, FindingsHaveDetails) {
  const struct {
    const char* shows;
    const char* body;
    const char* detail;
  } rows[] = {
      {"an abstract property", "properties (Hidden, Abstract, Logical)\nF\nend\n",
       "it is abstract in line 2"},
      {"no default value", "properties (Logical)\nN\nend\n", ""},
      {"a companion with a get method",
       "properties\nA = 'a';\nASet = velum.system.StringSet({'a'});\nend\n"
       "methods\nfunction v = get.ASet(obj)\nv = 1;\nend\nend\n",
       "the get method is in line 7"},
      {"a method with the new name",
       "methods (Access = protected)\nfunction f = isInputSizeLockedImpl(~, ~)\nend\n"
       "f = isInputSizeMutableImpl(obj, x)\nend\n",
       "the other method is in line 5"},
      {"all parts differ",
       "methods (Access = private)\nfunction f = processInputSizeChangeImpl(obj)\nend\nend\n",
       "expected: protected, at least 2 inputs, no output; found: private, 1 input, 1 output"},
      {"only the access differs",
       "methods\nfunction f = isOutputSizeLockedImpl(obj, x)\nend\nend\n",
       "expected: protected, 2 inputs, 1 output; found: public"},
      {"an access that is an expression",
       "methods (Access = {?C})\nfunction isInputDataTypeMutableImpl(~, ~, ~)\nend\nend\n",
       "expected: protected, 2 inputs, 1 output; found: an access that is an expression, 3 inputs, "
       "no output"},
      {"references, two of them in a line",
       "methods (Access = protected)\nfunction f = isOutputSizeLockedImpl(obj, x)\nend\n"
       "function h(obj)\nx = @isOutputSizeLockedImpl;\n"
       "isOutputSizeLockedImpl(isOutputSizeLockedImpl(obj, 1), 2);\nend\nend\n",
       "referred to in lines 6 and 7"},
  };
  for (const auto& [shows, body, detail] : rows) {
    const fl::filesystem::OverlayScope overlay(
        PathDispatcher::getDispatcher().classPath().front() + "/C.vlm",
        fl::i18n::to_ustring("classdef (StrictDefaults) C < velum.System\n" + std::string(body) +
                             "end\n"));
    const PlannedClass planned = std::move(planUpdate(u"C", allFamilies, false).front());
    for (const auto places : {FindingPlacesType::related, FindingPlacesType::members}) {
      const Finding finding = describeFindings(planned, places).at(0);
      EXPECT_EQ(detailOf(finding, LinesType::old),
                places == FindingPlacesType::related ? detail : "")
          << shows;
    }
  }
}

using Json = nlohmann::json;

// In a file with a byte order mark: a conversion that is left out on line 1, two that are made, and
// a finding on line 1.
ClassOutcome decidedOutcome() {
  using enum ConversionKindType;
  ClassOutcome outcome;
  ClassUpdate& update = outcome.update;
  update.className = "p.A";
  update.file = "/r/p/A.vlm";
  update.hasByteOrderMark = true;
  update.conversions = {leftOut(rename, "f", makeReason("why", {12, 40})),
                        makeConversion(logical, "X"), makeConversion(logical, "Y")};
  update.conversions[0].risk = {RiskType::unsafe, {makeReason("so", {})}, true};
  update.conversions[1].risk.isDefaultKnown = false;
  update.conversions[2].pass = 2;
  update.conversions[2].needs = {update.conversions[1].id};
  for (Conversion& each : update.conversions) each.edits = {{.text = "x"}};
  Finding& finding = update.findings.emplace_back();
  static_cast<LinePlace&>(finding) = {1, 5, 7, 1};
  finding.id = "PropertyHasEmptyDefault";
  finding.text = "Text.";
  finding.detail = "expected: more";
  outcome.file.bytes = FileBytes{"00", fl::EncodingType::utf8, true};
  outcome.file.edits = {{.offset = 3, .length = 0, .text = "x", .conversions = {1, 2}}};
  return outcome;
}

TEST(Formats, LinesThatAreLaidApartAreNamed) {
  const struct {
    std::vector<std::uint64_t> lines;
    std::string text;
  } rows[] = {
      {{12}, "line 12"},
      {{12, 13, 14}, "lines 12 to 14"},
      {{12, 13, 16, 18, 19}, "lines 12 to 13, 16 and 18 to 19"},
      {{1, 3, 5, 7, 9, 11, 13, 15, 17, 18}, "lines 1, 3, 5, 7, 9, 11, 13, 15 and 1 more"},
  };
  for (const auto& [lines, text] : rows) {
    ClassOutcome outcome;
    outcome.update.file = "/r/p/A.vlm";
    Conversion conversion = makeConversion(ConversionKindType::renameNegate, "f");
    conversion.risk = {RiskType::review, {makeReason("why", lines)}};
    conversion.risk.reasons[0].id = laidApartId;
    outcome.update.conversions = {conversion};
    const auto printed = [&](const char* format) {
      Report report(format, {});
      report.add(outcome);
      return report.finish();
    };
    EXPECT_EQ(printed("text").messages,
              fmt::format("/r/p/A.vlm:{}: note: {} laid apart for method 'f' [soca:LaidApart]\n",
                          lines.front(), text));
    const Json result = Json::parse(printed("json").data).at("results").at(0);
    EXPECT_EQ(result.at("conversions").at(0).at("laidApart"), Json(lines));
    const Json run = Json::parse(printed("sarif").data).at("runs").at(0);
    EXPECT_EQ(run.at("results").at(0).at("relatedLocations").size(), lines.size());
  }
}

TEST(Formats, JsonHasEachDecision) {
  Report report("json", {.edits = true});
  report.add(decidedOutcome());
  const Json result = Json::parse(report.finish().data).at("results").at(0);
  const Json expected = Json::parse(R"text([
    {"id": "p.A#impl/rename:f", "kinds": ["impl/rename"], "member": "f", "risk": "unsafe",
     "reasons": [{"id": "soca:StillReferenced", "detail": "so",
                  "message": "method 'f', to be renamed to 'new': so"}],
     "made": false,
     "leftOut": {"id": "soca:StillReferenced", "detail": "why",
       "message": "method 'f' is not renamed to 'new': why (lines 12 and 40)",
       "related": [{"line": 12, "column": 2, "endColumn": 4, "message": "Here."},
                   {"line": 40, "column": 2, "endColumn": 4, "message": "Here."}]},
     "pass": 0, "needs": [], "defaultKnown": true, "line": 1, "column": 3},
    {"id": "p.A#attributes/logical:X", "kinds": ["attributes/logical"], "member": "X",
     "risk": "safe", "reasons": [], "made": true, "pass": 1, "needs": [], "defaultKnown": false,
     "line": 1, "column": 3},
    {"id": "p.A#attributes/logical:Y", "kinds": ["attributes/logical"], "member": "Y",
     "risk": "safe", "reasons": [], "made": true, "pass": 2, "needs": ["p.A#attributes/logical:X"],
     "defaultKnown": true, "line": 1, "column": 3}])text");
  EXPECT_EQ(result.at("conversions").dump(1), expected.dump(1));
  EXPECT_EQ(result.at("findings").at(0),
            Json::parse(R"({"id": "VELUM:system:Analyzer:PropertyHasEmptyDefault",
              "message": "Text.", "detail": "expected: more",
              "line": 1, "column": 4, "endColumn": 6})"));
  EXPECT_EQ(result.at("edits").at(0).at("conversions"),
            Json::parse(R"(["p.A#attributes/logical:X", "p.A#attributes/logical:Y"])"));
}

TEST(Formats, SarifHasAResultForWhatIsLeftOutOrFails) {
  Report report("sarif", {});
  report.add(decidedOutcome());
  (*report).addFailure({.className = "p.B",
                        .id = "VELUM:system:Analyzer:SyntaxError",
                        .message = "It failed.",
                        .argument = "/r/p/B.vlm",
                        .diagnostics = {{2, 4, "one"}, {5, 6, "two"}}});
  (*report).addFailure({.className = "/r/q", .id = "soca:Strange", .message = "It failed."});
  (*report).addSuggestion({.roots = {"/r/src"}}, "Did you mean -p src?");
  const Json run = Json::parse(report.finish().data).at("runs").at(0);
  const Json& rules = run.at("tool").at("driver").at("rules");
  std::string text;
  for (const Json& result : run.at("results")) {
    const std::size_t rule = result.value("ruleIndex", rules.size());
    const Json place = result.at("locations").at(0).value("physicalLocation", Json::object());
    text +=
        fmt::format("{} {} [{}] {}{}: {}\n", result.at("level").get<std::string>(),
                    result.at("ruleId").get<std::string>(),
                    rule < rules.size() ? rules.at(rule).at("id").get<std::string>() : "no rule",
                    place.contains("region") ? place.at("region").at("startLine").get<int>() : 0,
                    result.contains("fixes") ? " with a fix" : "",
                    result.at("message").at("text").get<std::string>().substr(0, 54));
  }
  EXPECT_EQ(
      text,
      "warning soca:StillReferenced [soca:StillReferenced] 1: method 'f' is not renamed to "
      "'new': why (lines 12 and \n"
      "note attributes/logical [attributes] 1 with a fix: The declaration of property 'X' "
      "does not say by itself\n"
      "note attributes/logical [attributes] 1: The declaration of property 'Y' does not say "
      "by itself\n"
      "warning VELUM:system:Analyzer:PropertyHasEmptyDefault "
      "[VELUM:system:Analyzer:PropertyHasEmptyDefault] 1: Text; expected: more\n"
      "error VELUM:system:Analyzer:SyntaxError [VELUM:system:Analyzer:SyntaxError] 3: It "
      "failed.\n"
      "error soca:Strange [no rule] 0: It failed.\n"
      "error soca:SuperClassUnresolved [soca:SuperClassUnresolved] 0: Did you mean -p src?\n");
  EXPECT_EQ(run.at("results").at(4).at("relatedLocations").size(), 1U);
  EXPECT_EQ(run.at("results").at(0).at("relatedLocations").size(), 2U);
}

}  // namespace
}  // namespace soca
