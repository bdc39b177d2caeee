// Classes of one run whose conversions depend on each other.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

using Files = std::map<std::string, std::string>;

std::string classText(const std::string& name, const std::string& super,
                      const std::string& methods) {
  return fmt::format("classdef {} < {}\nmethods (Access = protected)\n{}end\nend\n", name, super,
                     methods);
}

// With `properties` in front of the methods.
std::string withProperties(const std::string& properties, const std::string& text) {
  const std::size_t place = text.find("methods");
  return text.substr(0, place) + properties + text.substr(place);
}

std::string strict(const std::string& text) { return "classdef (StrictDefaults)" + text.substr(8); }

constexpr const char* lockedQuery = "function f = isInputSizeLockedImpl(o, i)\nf = o.X;\nend\n";
constexpr const char* redundantQuery =
    "function f = isInputSizeMutableImpl(o, i)\nf = false;\nend\n";
constexpr const char* handler = "function processInputSizeChangeImpl(o, i)\nend\n";
constexpr const char* caller = "function g(o)\nprocessInputSizeChangeImpl(o, 1);\nend\n";

void writeAll(const Workspace& space, const Files& files) {
  for (const auto& [name, text] : files) space.write(name + ".vlm", text);
}

ProgramResult update(const Workspace& space, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "update");
  return space.soca(arguments);
}

// One line for each conversion: with its pass, or with the reason for which it is left out.
std::string conversionsOf(const Workspace& space, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "--format=json");
  std::string list;
  const auto document = nlohmann::json::parse(update(space, arguments).out);
  for (const auto& result : document.at("results")) {
    for (const auto& each : result.at("conversions")) {
      const std::string reason =
          each.at("made") ? "" : each.at("leftOut").at("id").get<std::string>().substr(5);
      list += fmt::format("{} {}\n", each.at("id").get<std::string>(),
                          reason.empty() ? each.at("pass").dump() : reason);
    }
  }
  return list;
}

TEST(RunPasses, DecideClassesThatDependOnEachOther) {
  const std::string base = classText("Base", "velum.System", lockedQuery);
  const std::string heir = strict(classText("Heir", "Base", redundantQuery));
  const Files gains = {{"Base", base}, {"Heir", heir}};
  const Files calls = {{"Base", classText("Base", "velum.System", handler)},
                       {"Heir", classText("Heir", "Base", caller)}};
  const Files overrides = {{"Base", calls.at("Base")},
                           {"Heir", classText("Heir", "Base", handler)}};
  const Files between = {{"Base", calls.at("Base")},
                         {"Mid", classText("Mid", "Base", "")},
                         {"Heir", classText("Heir", "Mid", handler)},
                         {"Other", classText("Other", "Mid", "")}};
  Files betweenCalls = between;
  betweenCalls["Other"] = classText("Other", "Mid", caller);
  const Files declares = {
      {"Base", classText("Base", "velum.System",
                         std::string("f = isInputComplexityMutableImpl(o, i)\n") + lockedQuery)},
      {"Mid",
       strict(classText("Mid", "Base",
                        "function f = isInputSizeMutableImpl(o, i)\nf = o.X;\nend\n"
                        "function f = isInputComplexityLockedImpl(o, i)\nf = true;\nend\n"))},
      {"Heir", strict(classText("Heir", "Mid",
                                "function f = isInputComplexityMutableImpl(o, i)\n"
                                "f = false;\nend\n"))}};
  const std::string freesModeSet = withProperties(
      "properties\nMode = 'a';\nend\n"
      "properties (Abstract)\nModeSet = velum.system.StringSet({'a'});\nend\n",
      classText("Base", "velum.System", ""));
  const Files frees = {{"Base", freesModeSet},
                       {"Heir", withProperties("properties (Logical)\nModeSet = true;\nend\n",
                                               classText("Heir", "Base", ""))}};
  // The class between converts its property, deletes its companion, and with it the reference to a
  // method; that of the derived class goes with an obsolete method.
  const std::string obsolete = "function f = isOutputSizeLockedImpl(o, i)\nf = o.X;\nend\n";
  const Files freesMore = {{"Base", freesModeSet},
                           {"Mid", withProperties("properties\nModeSet = 'b';\n"
                                                  "ModeSetSet = velum.system.StringSet({'b', "
                                                  "isOutputSizeLockedImpl});\nend\n",
                                                  classText("Mid", "Base", obsolete))},
                           {"Heir", classText("Heir", "Mid",
                                              "function f = isOutputComplexityLockedImpl(o, i)\n"
                                              "f = isOutputSizeLockedImpl(o, i);\nend\n")}};
  const Files ownSuperClass = {{"Base", strict(classText("Base", "velum.System", redundantQuery))},
                               {"Heir", classText("Heir", "Base & Heir", redundantQuery)}};
  const Files cycle = {{"Base", classText("Base", "Base & velum.system.mixin.Propagates",
                                          std::string(lockedQuery) +
                                              "function g(o)\nisInputSizeLockedImpl(o);\nend\n")},
                       {"Heir", strict(classText("Heir", "velum.System & Base", redundantQuery))}};
  const char* const baseIsUsed = "Base#impl/rename:processInputSizeChangeImpl UsedElsewhere\n";
  const struct {
    const char* shows;
    Files files;
    std::vector<std::string> arguments;
    std::string conversions;
  } rows[] = {
      {"the old method stays beside a redundant one",
       {{"C", strict(classText("C", "velum.System", std::string(redundantQuery) + lockedQuery))}},
       {"C"},
       "C#impl/delete-redundant:isInputSizeMutableImpl OldMethodStays\n"},
      {"the old method takes the name of a deleted one",
       {{"C", strict(classText("C", "velum.System", std::string(redundantQuery) + lockedQuery))}},
       {"--risk=unsafe"},
       "C#impl/delete-redundant:isInputSizeMutableImpl 1\n"
       "C#impl/rename-negate:isInputSizeLockedImpl 2\n"},
      {"a superclass gains the method, in the same run",
       gains,
       {},
       "Base#impl/rename-negate:isInputSizeLockedImpl 1\n"},
      {"a superclass gains the method, as a superclass",
       gains,
       {"-s", "Heir"},
       "Base#impl/rename-negate:isInputSizeLockedImpl 1\n"},
      {"a superclass would gain the method in another run",
       gains,
       {"Heir"},
       "Heir#impl/delete-redundant:isInputSizeMutableImpl SuperClassGainsMethod\n"},
      {"a superclass loses a method that another one only declares",
       declares,
       {},
       "Base#impl/rename-negate:isInputSizeLockedImpl 1\n"
       "Heir#impl/delete-redundant:isInputComplexityMutableImpl 3\n"
       "Mid#impl/rename-negate:isInputComplexityLockedImpl 1\n"
       "Mid#impl/delete-redundant:isInputComplexityLockedImpl 2\n"},
      {"a property is no longer abstract in a superclass",
       frees,
       {},
       "Base#attributes/string-set:Mode 1\nHeir#attributes/logical:ModeSet 2\n"},
      {"a class that is reached converts more than alone",
       freesMore,
       {},
       "Base#attributes/string-set:Mode 1\n"
       "Heir#impl/delete-obsolete:isOutputComplexityLockedImpl 1\n"
       "Mid#attributes/string-set:ModeSet 2\n"
       "Mid#impl/delete-obsolete:isOutputSizeLockedImpl 3\n"},
      {"a class is no superclass of itself",
       ownSuperClass,
       {},
       "Base#impl/delete-redundant:isInputSizeMutableImpl 1\n"
       "Heir#impl/delete-redundant:isInputSizeMutableImpl 2\n"},
      {"a superclass is no System object any more",
       cycle,
       {},
       "Base#mixins 1\n"
       "Heir#impl/delete-redundant:isInputSizeMutableImpl 2\n"},
      {"another class calls", calls, {}, baseIsUsed},
      {"another class calls, and its superclass is updated with it",
       calls,
       {"-s", "Heir"},
       baseIsUsed},
      {"another class calls, and any risk is accepted",
       calls,
       {"--risk=unsafe"},
       "Base#impl/rename:processInputSizeChangeImpl 1\n"},
      {"a class that is not in the run calls",
       calls,
       {"Base"},
       "Base#impl/rename:processInputSizeChangeImpl 1\n"},
      {"another class overrides",
       overrides,
       {},
       "Base#impl/rename:processInputSizeChangeImpl 2\n"
       "Heir#impl/rename:processInputSizeChangeImpl 1\n"},
      {"another class overrides, and the kind is not selected there",
       {{"Base", calls.at("Base")},
        {"Heir", classText("Heir", "Base", "function f = processInputSizeChangeImpl(o)\nend\n")}},
       {},
       baseIsUsed},
      {"over a class that is not in the run",
       between,
       {"Base", "Heir"},
       "Base#impl/rename:processInputSizeChangeImpl 2\n"
       "Heir#impl/rename:processInputSizeChangeImpl 1\n"},
      {"over a class that is not in the run, one that calls",
       betweenCalls,
       {"Base", "Heir", "Other"},
       std::string(baseIsUsed) + "Heir#impl/rename:processInputSizeChangeImpl 1\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.shows);
    const Workspace space;
    writeAll(space, row.files);
    EXPECT_EQ(conversionsOf(space, row.arguments), row.conversions);
    auto arguments = row.arguments;
    arguments.emplace_back("--write");
    EXPECT_EQ(update(space, arguments).exitCode, 0);
    const auto written = space.readAll();
    EXPECT_EQ(update(space, arguments).exitCode, 0);
    EXPECT_EQ(space.readAll(), written) << "a second run";
    arguments.back() = "--check";
    EXPECT_EQ(update(space, arguments).exitCode, 0);
  }
}

// Each class may lose its method once the superclass has lost it.
TEST(RunPasses, AChainNeedsAPassForEachClass) {
  constexpr int count = 40;
  const Workspace space;
  for (int i = 0; i < count; ++i) {
    // The order of the names is not that of the passes.
    const std::string name = fmt::format("C{}", i * 7 % count);
    const std::string super = i == 0 ? "velum.System" : fmt::format("C{}", (i - 1) * 7 % count);
    space.write(name + ".vlm", strict(classText(name, super, redundantQuery)));
  }
  // The last class is C33.
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{}, {"-s", "C33"}}) {
    const std::string list = conversionsOf(space, arguments);
    for (int i = 0; i < count; ++i) {
      const std::string line = fmt::format("C{}#impl/delete-redundant:isInputSizeMutableImpl {}\n",
                                           i * 7 % count, i + 1);
      EXPECT_NE(list.find(line), std::string::npos) << line << list;
    }
  }
  for (const char* format : {"text", "json", "sarif"}) {
    const std::vector<std::string> options = {std::string("--format=") + format, "-j1"};
    const auto alone = update(space, options);
    const auto parallel = update(space, {options.front(), "-j4"});
    EXPECT_EQ(alone.out, parallel.out) << format;
    EXPECT_EQ(alone.err, parallel.err) << format;
  }
  EXPECT_EQ(update(space, {"--write"}).exitCode, 0);
  for (const auto& [name, text] : space.readAll()) {
    EXPECT_EQ(text.find("Mutable"), std::string::npos) << name;
  }
  EXPECT_EQ(update(space, {"--check"}).exitCode, 0);
}

TEST(RunPasses, LinesAreThoseOfTheFileThatIsThere) {
  const std::string text =
      strict(classText("C", "velum.System",
                       "function f = isInputSizeLockedImpl(o, i)\nf = true;\nend\n"
                       "function f = isOutputSizeLockedImpl(o)\nf = true;\nend\n"));
  const Workspace space;
  space.write("C.vlm", text);
  space.write("in", text);
  const auto read = space.run({"sh", "-c", programPath() + " update --stdin-path C.vlm - < in"});
  const auto dry = update(space, {});
  const auto written = update(space, {"--write"});
  EXPECT_NE(dry.err.find("C.vlm:6: warning: Method 'isOutputSizeLockedImpl'"), std::string::npos)
      << dry.err;
  EXPECT_NE(written.err.find("C.vlm:3: warning: Method 'isOutputSizeLockedImpl'"),
            std::string::npos)
      << written.err;
  EXPECT_EQ(read.out, space.read("C.vlm"));
  // The first pass inserts a line before the rest of the line on which the second one begins.
  space.write("C.vlm", classText("C", "velum.System",
                                 "function f = isInputSizeLockedImpl(o, i)\nf = o.X;\n"
                                 "end, function f = isInputComplexityLockedImpl(o, i)\n"
                                 "f = isInputComplexityLockedImpl(o, i);\nend\n"));
  const auto inserted = update(space, {"--write", "--risk=unsafe"});
  EXPECT_NE(inserted.err.find("C.vlm:6: warning: Method 'isInputComplexityLockedImpl' was conv"),
            std::string::npos)
      << inserted.err << space.read("C.vlm");
}

}  // namespace
}  // namespace soca::testing
