// Every *Impl method that the rules convert, with all conditions for the conversion.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diagnostics/Findings.h"
#include "platform/text/Conversions.h"
#include "tests/cases/CaseRun.h"

namespace soca::testing {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

enum class RuleType { negate, rename, deletion, redundant };

// Marks the places in a body where `withNegations` negates the result, besides the end.
const std::string mark = "{negate}";

struct Row {
  const char* name;
  // Empty if the method is to be deleted.
  const char* newName;
  RuleType rule;
  // Without the object.
  int inputs;
};

constexpr Row kRows[] = {
    {"isInputSizeLockedImpl", "isInputSizeMutableImpl", RuleType::negate, 1},
    {"isInputComplexityLockedImpl", "isInputComplexityMutableImpl", RuleType::negate, 1},
    {"processInputSizeChangeImpl", "processInputSpecificationChangeImpl", RuleType::rename, 1},
    {"isOutputComplexityLockedImpl", "", RuleType::deletion, 1},
    {"isOutputSizeLockedImpl", "", RuleType::deletion, 1},
    {"isInputDataTypeMutableImpl", "", RuleType::redundant, 1},
    {"isInputSizeMutableImpl", "", RuleType::redundant, 1},
    {"isInputComplexityMutableImpl", "", RuleType::redundant, 1},
    {"isDiscreteStateSpecificationMutableImpl", "", RuleType::redundant, 0},
    {"isTunablePropertyDataTypeMutableImpl", "", RuleType::redundant, 0},
};

bool renames(const Row& row) { return row.newName[0] != '\0'; }

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// A class with one such method, which is converted unless the test changes it.
struct ClassText {
  explicit ClassText(const Row& row) {
    for (int i = 0; i < row.inputs; ++i) inputs += ", ~";
    if (row.rule == RuleType::rename) outputs = "";
  }

  std::string print(const std::string& name, const std::string& methodBody) const {
    return replaceAll("classdef " + attributes + "C < velum.System\n    properties\n        P = " +
                          propertyDefault + ";\n    end\n    methods (Access = " + access + ")\n" +
                          (name.empty() ? ""
                                        : "        function " + outputs + name + "(" + inputs +
                                              ")\n" + methodBody + "        end\n") +
                          "        function other(obj)\n            " + statement +
                          "\n        end\n    end\n" + moreBlocks + "end\n",
                      "{name}", oldName);
  }

  std::string attributes = "(StrictDefaults) ";
  std::string propertyDefault = "1";
  std::string access = "protected";
  std::string outputs = "flag = ";
  std::string inputs = "obj";
  // In the method; `{name}` is replaced by the old name.
  std::string statement = "disp 1";
  std::string moreBlocks;
  std::string body = "            flag = false;\n";
  std::string oldName;
};

CaseOutcome updateText(const std::string& text) {
  return runCase({"", "", "", {{"before/C.vlm", text}}});
}

// The body with its marks `{negate}` removed, or replaced by the general negation.
std::string withoutMarks(const std::string& body) { return replaceAll(body, mark, ""); }

std::string withNegations(std::string body, const std::string& output) {
  const std::string negation = output + " = ~" + output + ";\n";
  for (std::size_t at = 0; (at = body.find(mark, at)) != std::string::npos;) {
    const std::size_t column = at - (body.rfind('\n', at) + 1);
    body.replace(at, mark.size(), negation + std::string(column, ' '));
  }
  return body + std::string(12, ' ') + negation;
}

struct Expectation {
  bool isConverted;
  // The message, or null for none.
  const char* id;
  // The body after the update if the method is renamed.
  std::string bodyAfter;
};

void expectOutcome(const Row& row, ClassText classText, const Expectation& expected,
                   const std::string& what) {
  SCOPED_TRACE(std::string(row.name) + ": " + what);
  classText.oldName = row.name;
  CaseOutcome outcome = updateText(classText.print(row.name, classText.body));
  EXPECT_EQ(outcome.sections["error"], "");
  EXPECT_EQ(outcome.sections["after/C.vlm"],
            expected.isConverted ? classText.print(row.newName, expected.bodyAfter) : "");
  std::string message;
  if (expected.id != nullptr) {
    message = to_string(findingText(expected.id, {to_ustring(row.name), to_ustring(row.newName)}));
    message += "\n";
  }
  EXPECT_EQ(outcome.sections["messages"], message);
}

std::string convertedBody(const Row& row) {
  return row.rule == RuleType::negate ? "            flag = true;\n" : ClassText(row).body;
}

const char* mismatchId(const Row& row) {
  if (renames(row)) return "ImplSignatureMismatch";
  return row.rule == RuleType::deletion
             ? "ImplSignatureMismatchForDeletion"
             : "ImplSignatureMismatchForDeletionStrictDefaultsRedundantNonObsolete";
}

void expectMismatch(const Row& row, const ClassText& classText, const std::string& what) {
  expectOutcome(row, classText, {false, mismatchId(row), ""}, what);
}

TEST(ImplRows, AreConverted) {
  for (const Row& row : kRows) {
    expectOutcome(row, ClassText(row), {true, nullptr, convertedBody(row)}, "strict defaults");
    ClassText ordinary(row);
    ordinary.attributes = "";
    expectOutcome(row, ordinary, {row.rule != RuleType::redundant, nullptr, convertedBody(row)},
                  "ordinary defaults");
  }
}

TEST(ImplRows, NeedTheirSignature) {
  for (const Row& row : kRows) {
    ClassText more(row);
    more.inputs += ", more";
    if (row.rule == RuleType::rename) {
      expectOutcome(row, more, {true, nullptr, convertedBody(row)}, "more inputs");
    } else {
      expectMismatch(row, more, "more inputs");
    }
    ClassText fewer(row);
    fewer.inputs = row.inputs == 0 ? "" : "obj";
    expectMismatch(row, fewer, "fewer inputs");
    const std::vector<std::string> wrongOutputs =
        row.rule == RuleType::rename ? std::vector<std::string>{"flag = ", "[a, b] = "}
                                     : std::vector<std::string>{"", "[] = ", "[flag, b] = "};
    for (const std::string& outputs : wrongOutputs) {
      ClassText wrong(row);
      wrong.outputs = outputs;
      expectMismatch(row, wrong, "outputs " + outputs);
      // Strict defaults and the body are not checked.
      wrong.attributes = "";
      wrong.body = "";
      expectMismatch(row, wrong, "no body, outputs " + outputs);
    }
  }
}

TEST(ImplRows, NeedToBeProtected) {
  for (const Row& row : kRows) {
    for (const char* access :
         {"public", "private", "'private'", "immutable", "{?C}", "Protected"}) {
      ClassText classText(row);
      classText.access = access;
      expectMismatch(row, classText, access);
    }
    ClassText quoted(row);
    quoted.access = "'protected', Hidden";
    expectOutcome(row, quoted, {true, nullptr, convertedBody(row)}, "quoted");
  }
}

TEST(ImplRows, NeedAFreeNewName) {
  for (const Row& row : kRows) {
    if (!renames(row)) continue;
    const std::string name = row.newName;
    for (const std::string& block :
         {"    methods\n        function a = " + name + "(obj, b)\n        end\n    end\n",
          "    methods (Abstract)\n        " + name + "\n    end\n"}) {
      ClassText classText(row);
      classText.moreBlocks = block;
      // If it were checked, it would not be converted either.
      classText.access = "public";
      classText.oldName = row.name;
      const CaseOutcome outcome = updateText(classText.print(row.name, classText.body));
      EXPECT_FALSE(outcome.sections.contains("after/C.vlm"));
      EXPECT_EQ(outcome.sections.at("messages")
                    .find("Method '" + std::string(row.name) +
                          "' is not converted: the class already has "
                          "a method '" +
                          name + "'.\n"),
                0U);
    }
  }
}

TEST(ImplRows, AreReferenced) {
  constexpr const char* kStatements[] = {
      "x = {name}(obj, 1);", "x = @{name};", "x = @(a) {name}(a, 1);",        "x = obj.{name};",
      "obj.{name}(1)",       "{name} now",   "x = {name}@velum.System(obj);", "x = [1 {name}'];",
      "function {name}, end"};
  for (const Row& row : kRows) {
    const bool isConverted = row.rule != RuleType::redundant;
    const char* id = "LegacyImplReferencedStrictDefaultsRedundantNonObsolete";
    if (isConverted) id = renames(row) ? "LegacyImplReferenced" : "DeprecatedImplReferenced";
    const Expectation expected{isConverted, id, convertedBody(row)};
    for (const char* statement : kStatements) {
      ClassText classText(row);
      classText.statement = statement;
      expectOutcome(row, classText, expected, statement);
    }
    for (const char* value : {"@{name}", "{1, {name}}"}) {
      ClassText classText(row);
      classText.propertyDefault = value;
      expectOutcome(row, classText, expected, value);
    }
    ClassText twice(row);
    twice.moreBlocks = "    methods\n        function {name}(obj)\n        end\n    end\n";
    expectOutcome(row, twice, expected, "a second definition");
  }
}

TEST(ImplRows, AreNotReferencedByText) {
  for (const Row& row : kRows) {
    for (const char* statement :
         {"% {name}(obj, 1)", "x = '{name}';", "x = \"{name}\";", "disp {name} -{name}",
          "x = {name}2(obj);", "x = 1; ... {name}", "x = pkg_{name};", "x = ?a.{name};"}) {
      ClassText classText(row);
      classText.statement = statement;
      expectOutcome(row, classText, {true, nullptr, convertedBody(row)}, statement);
    }
  }
}

// The body matters only for methods that are negated or redundant.
TEST(ImplRows, CheckBodies) {
  struct Body {
    const char* outputs;
    const char* text;
    // Null for the general negation.
    const char* negated;
  };
  constexpr Body kBodies[] = {
      {"flag", "flag = true", "flag = false"},
      {"[flag]", "flag=(1 ~= 2);", nullptr},
      {"flag", "flag = ~false;", nullptr},
      {"flag", "other = false;", nullptr},
      {"flag", "flag = false; flag = false;", nullptr},
      {"flag", "flag(1) = false;", nullptr},
      {"flag", "", nullptr},
      {"flag", "{negate}return", nullptr},
      {"flag", "if obj.P, flag = 1; {negate}return; end\n    flag = 2;\n    {negate}return\n",
       nullptr},
      {"flag", "flag = nested();\n    function x = nested(), return, end", nullptr},
      {"flag", "if obj.P\n    function nested()\n      {negate}return\n    end\n  end", nullptr},
      {"varargout", "varargout{1.0} = true;", "varargout{1.0} = false;"},
      {"varargout", "varargout{2} = false;", nullptr},
      {"varargout", "varargout{1} = obj.P;\n {negate}return", nullptr},
  };
  for (const Row& row : kRows) {
    for (const Body& body : kBodies) {
      ClassText classText(row);
      const std::string output = body.outputs == std::string("varargout") ? "varargout{1}" : "flag";
      if (row.rule != RuleType::rename) classText.outputs = std::string(body.outputs) + " = ";
      const std::string text = std::string("            ") + body.text + "\n";
      classText.body = withoutMarks(text);
      Expectation expected{row.rule != RuleType::redundant, nullptr, classText.body};
      if (row.rule == RuleType::negate) {
        expected.bodyAfter = body.negated != nullptr
                                 ? std::string("            ") + body.negated + "\n"
                                 : withNegations(text, output);
      }
      expectOutcome(row, classText, expected, body.text);
    }
  }
}

}  // namespace
}  // namespace soca::testing
