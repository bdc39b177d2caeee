// The commands that change no files: help, explain, check, actions and classes.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "cli/options/OptionTable.h"
#include "reports/explanations/MessageExplanations.h"
#include "service/UpdaterImpl.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

TEST(Reports, HelpFitsTheScreen) {
  const Workspace space;
  const auto help = space.soca({"--help"});
  // Leaves one line for the next prompt.
  EXPECT_LE(std::ranges::count(help.out, '\n'), 23) << help.out;
  const auto expectNarrow = [](const ProgramResult& result) {
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_FALSE(std::regex_search(result.out, std::regex("[^\n]{81}"))) << result.out;
  };
  expectNarrow(help);
  for (const cli::CommandRow& command : cli::commandRows()) {
    const auto ofCommand = space.soca({std::string(command.name), "--help"});
    expectNarrow(ofCommand);
    EXPECT_LE(std::ranges::count(ofCommand.out, '\n'), 40) << ofCommand.out;
    for (const auto& result : {help, ofCommand}) {
      EXPECT_NE(result.out.find(command.example), std::string::npos) << result.out;
      EXPECT_NE(result.out.find(command.summary), std::string::npos) << result.out;
    }
  }
}

TEST(Reports, VersionShowsTheBuild) {
  const Workspace space;
  const std::string version = space.soca({"--version"}).out;
  EXPECT_TRUE(std::regex_search(
      version, std::regex("^soca [0-9]+\\.[0-9.]+\n(  commit     [0-9a-f]{7,}.*\n)?"
                          "  compiler   \\w+ [0-9.]+, \\w+\n"
                          "  libraries  fmt [0-9.]+, CLI11 [0-9.]+, .*[0-9]\n$")))
      << version;
}

TEST(Reports, EveryIdIsExplained) {
  const Workspace space;
  const auto list = space.soca({"explain"});
  EXPECT_EQ(list.exitCode, 0);
  const auto expectExplained = [&](std::string_view id, std::string_view part) {
    EXPECT_NE(list.out.find(std::string("  ") + std::string(id) + '\n'), std::string::npos) << id;
    const auto page = space.soca({"explain", std::string(id)});
    EXPECT_EQ(page.exitCode, 0);
    EXPECT_NE(page.out.find(part), std::string::npos) << page.out;
  };
  for (const auto& rule : ruleExplanations()) expectExplained(rule.id, "\nBefore:\n");
  for (const auto& message : messageExplanations()) {
    expectExplained(message.id, message.fullId);
    const auto byFullId = space.soca({"explain", std::string(message.fullId)});
    EXPECT_NE(byFullId.out.find("\nRemedy:\n"), std::string::npos) << byFullId.out;
  }
  for (const auto& message : programExplanations()) {
    expectExplained(message.id, "\nCause:\n");
  }
}

TEST(Reports, CheckPrintsTheErrorsOfAllFiles) {
  const Workspace space;
  space.write("good.vlm", "classdef G\nend\n");
  space.write("sub/bad.vlm", "x = 1;\ny = (2;\n");
  space.write("worse.vlm", "classdef W\n  methods\n");
  const auto good = space.soca({"check", "good.vlm"});
  EXPECT_EQ(good.exitCode, 0);
  EXPECT_EQ(good.out + good.err, "");
  const auto bad = space.soca({"check", "sub/bad.vlm", "good.vlm", "none.vlm", "worse.vlm", "sub"});
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.out.substr(0, bad.out.find("worse.vlm")),
            "sub/bad.vlm:2:7: error: expected `)` to close `(`, found `;`\n"
            "    2 | y = (2;\n"
            "      |       ^\n");
  EXPECT_NE(bad.err.find("none.vlm: there is no such file"), std::string::npos) << bad.err;
  EXPECT_NE(bad.err.find("sub: it is a folder"), std::string::npos) << bad.err;
}

TEST(Reports, AreThoseOfTheService) {
  const Workspace space;
  space.write("p/A.vlm", "classdef A < p.\u00c4 & velum.system.mixin.Propagates\nend\n");
  space.write("p/\u00c4.vlm", outdatedClass("\u00c4"));
  const auto actions = space.soca({"actions", "-s", "p.A", "p/\u00c4.vlm"});
  EXPECT_EQ(actions.exitCode, 0) << actions.err;
  const std::string root = space.path().string();
  const std::string own =
      "CLASS: p.A\n\nFile: " + root +
      "/p/A.vlm\n\nRange: From (0,13) to (0,48)\nReplacement: \"p.\u00c4\"\n\n\n"
      "CLASS: p.\u00c4\n\nFile: " +
      root + "/p/\u00c4.vlm\n\n";
  EXPECT_EQ(actions.out.substr(0, own.size()), own);
  EXPECT_EQ(space.soca({"actions", "p.A"}).out, own.substr(0, own.find("CLASS: p.\u00c4")));
  const auto classes = space.soca({"classes", "-j", "1", "p.A"});
  EXPECT_EQ(classes.out.substr(0, 45), "CLASS: p.A\nSystem object\nSuperclasses:  p.\u00c4\n");
}

}  // namespace
}  // namespace soca::testing
