#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/text/Conversions.h"
#include "tests/cli/AppliedEdits.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

using nlohmann::json;

// A class with an edit after a character that takes two code units.
constexpr const char* pairClass =
    "classdef P < velum.System\n"
    "  properties, Mode = 'a'; end\n"
    "  properties (Constant), Note = '\U0001F600'; ModeSet = velum.system.StringSet({'a'}); end\n"
    "end\n";

json logOf(const Workspace& space, std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"update", "--format", "sarif"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return json::parse(space.soca(arguments).out).at("runs").at(0);
}

std::size_t offsetOf(const fl::ustring& text, std::size_t line, std::size_t column) {
  std::size_t start = 0;
  for (; line > 1; --line) start = text.find(u'\n', start) + 1;
  return start + column - 1;
}

// The text of the file after all fixes of the log that concern it.
fl::ustring fixedText(const json& run, const std::string& uri, fl::ustring text) {
  std::vector<json> replacements;
  for (const json& result : run.at("results")) {
    if (!result.contains("fixes")) continue;
    const json& change = result.at("fixes").at(0).at("artifactChanges").at(0);
    if (change.at("artifactLocation").at("uri") != uri) continue;
    for (const json& each : change.at("replacements")) replacements.push_back(each);
  }
  // A byte order mark counts as no character.
  const bool hasMark = text.starts_with(u'\uFEFF');
  if (hasMark) text.erase(0, 1);
  const auto startOf = [&](const json& replacement) {
    const json& region = replacement.at("deletedRegion");
    return offsetOf(text, region.at("startLine"), region.at("startColumn"));
  };
  std::ranges::sort(replacements, std::greater(), startOf);
  for (const json& each : replacements) {
    const json& region = each.at("deletedRegion");
    const std::size_t start = startOf(each);
    const std::size_t end = offsetOf(text, region.at("endLine"), region.at("endColumn"));
    const auto content = each.value("insertedContent", json::object()).value("text", "");
    text.replace(start, end - start, fl::i18n::to_ustring(content));
  }
  return hasMark ? u'\uFEFF' + text : text;
}

TEST(Sarif, FixesMakeTheNewTextInAnyEncoding) {
  const std::string odd = "a b/100%25 \u00e4:#?";
  std::string latin = outdatedClass("C");
  latin.replace(latin.find("\u00e9"), 2, "\xe9");
  const std::map<std::string, std::string> classes = {
      {"plain/C", outdatedClass("C")},
      {"mark/C", "\xEF\xBB\xBF" + outdatedClass("C")},
      {"latin/C", latin},
      {"pair/P", pairClass}};
  const Workspace space;
  for (const auto& [name, bytes] : classes) {
    const auto folder = odd + std::filesystem::path(name).parent_path().string();
    const auto file = folder + "/" + std::filesystem::path(name).filename().string() + ".vlm";
    space.write(file, bytes);
    const auto run = logOf(space, {"-p", folder});
    ASSERT_EQ(run.at("artifacts").size(), 1U) << run.dump(1);
    const json& artifact = run.at("artifacts").at(0);
    EXPECT_EQ(artifact.at("hashes").at("sha-256"),
              space.run({"sha256sum", file}).out.substr(0, 64));
    const std::string uri = artifact.at("location").at("uri");
    EXPECT_EQ(uri.substr(0, 32), "a%20b/100%2525%20%C3%A4%3A%23%3F");
    EXPECT_EQ(artifact.at("encoding"), name == "latin/C" ? "ISO-8859-1" : "UTF-8");
    const auto data =
        json::parse(space.soca({"update", "--format=json", "--edits", "-p", folder}).out);
    const json& update = data.at("results").at(0);
    const std::string expected = update.at("text");
    // The conversions come first, at the same places.
    for (std::size_t i = 0; i < update.at("conversions").size(); ++i) {
      const json& location = run.at("results").at(i).at("locations").at(0);
      EXPECT_EQ(update.at("conversions").at(i).at("column"),
                location.at("physicalLocation").at("region").at("startColumn"));
    }
    const auto text = fl::decodeFileText(bytes).text;
    EXPECT_EQ(fl::i18n::to_string(fixedText(run, uri, text)), expected) << run.dump(1);
    EXPECT_NE(bytes, expected);
  }
}

// Many sets that cannot be converted, because a method uses each.
std::string classWithUses() {
  constexpr int setCount = 20000;
  constexpr std::size_t size = 3'000'000;
  std::string text = "classdef Q < velum.System\nproperties (Constant)\n";
  for (int i = 0; i < setCount; ++i) {
    const std::string name = "P" + std::to_string(i);
    text += name + " = 'a'\n" + name + "Set = velum.system.StringSet({'a'})\n";
  }
  text += "end\nmethods\nfunction f(obj)\n";
  for (int i = 0; text.size() < size; ++i)
    text += "obj.P" + std::to_string(i % setCount) + "Set;\n";
  return text + "end\nend\nend\n";
}

// A search of the text for each finding would take a hundred times as long as the update.
TEST(Sarif, PlacesOfManyFindingsTakeLinearTime) {
  const Workspace space;
  space.write("Q.vlm", classWithUses());
  const auto timeOf = [&](const std::vector<std::string>& arguments, std::string_view expected) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(space.soca(arguments).out.find(expected), std::string::npos);
    return std::chrono::steady_clock::now() - start;
  };
  const auto alone = timeOf({"update", "-q"}, "");
  EXPECT_LT(timeOf({"update", "--format=sarif"}, "The use of the set property."), 20 * alone);
}

std::vector<std::string> fingerprintsOf(const json& run) {
  std::vector<std::string> fingerprints;
  for (const json& result : run.at("results")) {
    fingerprints.push_back(result.at("partialFingerprints").at("memberAndRule/v1"));
  }
  return fingerprints;
}

TEST(Sarif, FingerprintsStayWhenLinesMove) {
  const Workspace space;
  std::string text = outdatedClass("C") + "% isInputSizeLockedImpl\n";
  // Two findings that differ only in their places.
  text.insert(text.find("    properties (Hidden)"),
              "    properties (Logical)\n        X\n    end\n"
              "    properties (Logical)\n        X\n    end\n");
  space.write("C.vlm", text);
  const auto before = logOf(space);
  auto fingerprints = fingerprintsOf(before);
  std::string moved = text;
  moved.insert(moved.find("    properties"), "    % one\n    % more\n\n");
  space.write("C.vlm", moved);
  const auto after = logOf(space);
  EXPECT_EQ(fingerprintsOf(after), fingerprints);
  EXPECT_NE(after.at("results"), before.at("results"));
  std::ranges::sort(fingerprints);
  EXPECT_EQ(std::ranges::unique(fingerprints).size(), 0U);
  EXPECT_EQ(fingerprints.size(), 6U);
  const auto checked = logOf(space, {"--check"});
  EXPECT_EQ(checked.at("invocations").at(0).at("executionSuccessful"), true);
  EXPECT_EQ(checked.at("invocations").at(0).at("exitCode"), 1);
}

TEST(Sarif, ReportsFailuresAndIsTheSameForAnyNumberOfJobs) {
  const Workspace space;
  const Workspace elsewhere;
  elsewhere.write("lib/Far.vlm", outdatedClass("Far"));
  space.write("Broken.vlm",
              "classdef Broken < velum.System\n  properties\n    X = (;\n  end\nend\n");
  space.write("Other.vlm", "classdef Other < handle\nend\n");
  for (char c = 'A'; c <= 'M'; ++c) {
    space.write(std::string(1, c) + ".vlm", outdatedClass(std::string(1, c)));
  }
  const std::string far = elsewhere.path() / "lib";
  const std::vector<std::string> arguments = {"update", "--format=sarif", "-p", ".", "-p", far};
  auto alone = arguments;
  alone.insert(alone.end(), {"-j", "1"});
  auto together = arguments;
  together.insert(together.end(), {"-j", "7"});
  const auto result = space.soca(alone);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(space.soca(together).out, result.out);
  const auto run = json::parse(result.out).at("runs").at(0);
  const json& invocation = run.at("invocations").at(0);
  EXPECT_EQ(invocation.at("executionSuccessful"), false);
  ASSERT_EQ(invocation.at("toolExecutionNotifications").size(), 1U) << invocation.dump(1);
  const auto isError = [](const json& each) { return each.at("level") == "error"; };
  const json error = *std::ranges::find_if(run.at("results"), isError);
  EXPECT_EQ(error.at("ruleId"), "VELUM:system:Analyzer:SyntaxError");
  const json& place = error.at("locations").at(0).at("physicalLocation");
  EXPECT_EQ(place.at("artifactLocation").at("uri"), "Broken.vlm");
  EXPECT_EQ(place.at("region").at("startLine"), 3);
  EXPECT_EQ(invocation.at("toolExecutionNotifications").at(0).at("level"), "note");
  EXPECT_EQ(run.at("artifacts").back().at("location"),
            json({{"uri", "Far.vlm"}, {"uriBaseId", "ROOT2"}}));
  EXPECT_EQ(run.at("originalUriBaseIds").at("ROOT2").at("uri"), "file://" + far + "/");
}

}  // namespace
}  // namespace soca::testing
