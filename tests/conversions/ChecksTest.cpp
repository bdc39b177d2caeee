#include "conversions/Checks.h"

#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

PlannedClass plan(const TemporaryFolder& folder, const std::string& text) {
  folder.write("C.vlm", text);
  PathDispatcher::getDispatcher().setClassPath({folder.path()});
  return std::move(planUpdate(u"C", 7, false).front());
}

std::string reasonAgainst(const PlannedClass& planned, const std::string& newText) {
  return NewTextCheck(planned)
      .findReasonToRefuse(*ca::analyzeText(to_ustring(newText)))
      .value_or("");
}

constexpr const char* before =
    "classdef C < velum.System\n"
    "  properties\n"
    "    Mode = 'a';\n"
    "    Gain = 1;\n"
    "  end\n"
    "  properties (Hidden)\n"
    "    ModeSet = velum.system.StringSet({'a', 'b'});\n"
    "  end\n"
    "  methods (Access = protected)\n"
    "    function flag = isInputSizeLockedImpl(~, ~)\n"
    "      flag = false;\n"
    "    end\n"
    "    function flag = isOutputSizeLockedImpl(~, ~)\n"
    "      flag = true;\n"
    "    end\n"
    "    function stepImpl(~)\n"
    "    end\n"
    "  end\n"
    "end\n";

// A deletion of `Gain = 1;`.
PlannedAction deletionOfGain(RuleFamilyType family) {
  const Extent extent = {{3, 4}, {3, 13}};
  return {family, true, extent, {{extent, u"", 0}}};
}

TEST(NewTextCheck, NamesWhatIsWrongInANewText) {
  struct Row {
    const char* what;
    // What is changed in the text of the update.
    std::string from;
    std::string to;
    const char* reason;
  };
  const Row rows[] = {
      {"the text of the update", "", "", ""},
      {"a property is missing", "    Gain = 1;\n", "", "property 'Gain' would get lost"},
      {"properties change places", "Gain = 1;", "ModeSet = 1;\n Gain = 1;",
       "property 'Gain' would get lost"},
      {"one is added", "Gain = 1;", "Gain = 1;\n X", "a property 'X' would be added"},
      {"another value", "1;", "2;", "the default value of property 'Gain' would change"},
      {"no value", " = 'a'", "", "the default value of property 'Mode' would change"},
      {"a method is missing", "    function stepImpl(~)\n    end\n", "",
       "method 'stepImpl' would get lost"},
      {"one is added", "(~)\n    end", "(~)\n    end\n function f(~)\n end",
       "a method 'f' would be added"},
      {"one is not renamed", "Mutable", "Locked", "method 'isInputSizeMutableImpl' would get lost"},
      {"a syntax error", "1;", "(1;",
       "the new text would have a syntax error in line 4, column 14:"},
  };
  const TemporaryFolder folder;
  const PlannedClass planned = plan(folder, before);
  for (const Row& row : rows) {
    std::string text = to_string(fl::ustring(planned.text()));
    text.replace(text.find(row.from), row.from.size(), row.to);
    const std::string reason = reasonAgainst(planned, text);
    EXPECT_EQ(reason.substr(0, std::string_view(row.reason).size()), row.reason) << row.what;
    EXPECT_EQ(reason.empty(), *row.reason == '\0') << row.what << ": " << reason;
  }
  EXPECT_EQ(reasonAgainst(planned, "x = 1;\n"), "property 'Mode' would get lost") << "no class";
}

TEST(NewTextCheck, ExpectsWhatTheActionsDo) {
  const TemporaryFolder folder;
  const PlannedClass planned = plan(folder, before);
  std::string text = to_string(fl::ustring(planned.text()));
  PlannedClass wrong = planned;
  wrong.actions.push_back(deletionOfGain(RuleFamilyType::mixins));
  EXPECT_NE(reasonAgainst(wrong, text), "") << "the text does not have the edit";
  wrong.actions.back() = deletionOfGain(RuleFamilyType::attributes);
  text.erase(text.find("    Gain = 1;\n"), 14);
  EXPECT_EQ(reasonAgainst(wrong, text), "property 'Gain' would be deleted");
}

TEST(NewTextCheck, RefusesASetWithAValueThatEndsItsText) {
  const std::pair<const char*, bool> sets[] = {{"{'a'',''b', 'c'}", true},
                                               {"{'a \"b\"', 'c'}", false},
                                               {"[\"a\"\",\"\"b\", \"c\"]", true},
                                               {"[\"it's\", \"c\"]", false}};
  for (const auto& [set, isRefused] : sets) {
    const TemporaryFolder folder;
    const PlannedClass planned =
        plan(folder, std::string("classdef C < velum.System\n  properties\n    Mode = 'c';\n") +
                         "    ModeSet = velum.system.StringSet(" + set + ");\n  end\nend\n");
    EXPECT_EQ(reasonAgainst(planned, to_string(fl::ustring(planned.text()))),
              isRefused ? "a value in the set of property 'Mode' has a quote in it" : "")
        << set;
  }
}

}  // namespace
}  // namespace soca
