// Runs all before-and-after cases by the program with `--as-service` or `--tidy`: it prints the
// answers of the service and writes its texts, its diffs and its single replacements give the same
// files, and it refuses only the texts that are known to be spoiled.
#include "tests/cases/CaseFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include <filesystem>
#include <sstream>

#include "rules/RuleFamilies.h"
#include "tests/Places.h"
#include "tests/cli/AppliedEdits.h"
#include "tests/cli/ProgramRunner.h"
#include "tests/cli/ServiceAnswers.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view before = "before/";

// The call of the service that a case makes.
struct Call {
  std::string className;
  UpdateMask mask = allFamilies;
  bool includeSuperclasses = false;
  bool isTidy = false;
  // The text of the class table; empty for none.
  std::string table;

  // Whether the program can make the same call.
  bool isPossible() const {
    return (mask & allFamilies) != 0 && className.find('/') == std::string::npos;
  }
};

Call callOf(const Case& tested) {
  Call call;
  for (const Section& section : tested.sections) {
    if (!call.className.empty() || !section.name.starts_with(before)) continue;
    call.className = fs::path(section.name.substr(before.size())).replace_extension().string();
    std::ranges::replace(call.className, '/', '.');
  }
  if (const Section* table = tested.find("table")) call.table = table->text;
  const Section* options = tested.find("options");
  std::istringstream words(options != nullptr ? options->text : "");
  for (std::string word; words >> word;) {
    if (word == "superclasses") call.includeSuperclasses = true;
    if (word == "tidy") call.isTidy = true;
    if (word == "class") words >> call.className;
    if (word == "mask") words >> call.mask;
  }
  return call;
}

// The arguments of the program for a case.
std::vector<std::string> argumentsOf(const Case& tested) {
  const Call call = callOf(tested);
  std::vector<std::string> arguments = {"update", "--as-service"};
  if (call.isTidy) arguments = {"update", "--tidy", "--risk=unsafe"};
  if (call.includeSuperclasses) arguments.emplace_back("-s");
  std::string rules;
  for (const RuleFamilyType family : selectRuleFamilies(call.mask)) {
    rules += (rules.empty() ? "" : ",") + std::string(ruleFamily(family).name);
  }
  arguments.insert(arguments.end(), {"-r", rules});
  if (!call.table.empty()) {
    arguments.insert(arguments.end(), {"--class-table", "table.json"});
  }
  arguments.push_back(call.className);
  return arguments;
}

void writeFiles(const Case& tested, const Workspace& space) {
  for (const Section& section : tested.sections) {
    if (section.name == "table") space.write("table.json", section.text);
    if (!section.name.starts_with(before)) continue;
    const std::string name = section.name.substr(before.size());
    fs::create_directories((space.path() / name).parent_path());
    if (!name.ends_with('/')) space.write(name, section.text);
  }
}

// The expected files after an update with `--write`.
std::map<std::string, std::string> expectedFiles(const Case& tested, const Workspace& space) {
  auto files = space.readAll();
  if (tested.find("error") != nullptr || tested.find("missing-delimiter") != nullptr) return files;
  for (auto& [name, text] : files) {
    if (const Section* after = tested.find("after/" + name)) text = after->text;
  }
  return files;
}

std::vector<std::string> with(std::vector<std::string> arguments, const char* option) {
  arguments.insert(arguments.begin() + 1, option);
  return arguments;
}

// The text at the place of a finding, which must be within its line.
std::string textAt(const nlohmann::json& place, std::string_view text) {
  for (std::size_t line = place.at("line"); line > 1; --line)
    text.remove_prefix(text.find('\n') + 1);
  const std::size_t column = place.at("column");
  const auto line = fl::i18n::to_ustring(text.substr(0, text.find('\n')));
  return fl::i18n::to_string(
      line.substr(column - 1, place.at("endColumn").get<std::size_t>() - column));
}

// Whether a related place is one of a name in the message of its finding.
bool isOfName(const nlohmann::json& place) {
  const std::string message = place.at("message");
  return std::ranges::none_of(std::to_array<std::string_view>({"The access ", "The attribute ",
                                                               "The default ", "The signature "}),
                              [&](std::string_view others) { return message.starts_with(others); });
}

// Whether each finding is at the member that its message names first, and its related places at
// another name in the message.
void expectPlaces(const nlohmann::json& result, const std::string& bytes) {
  for (const auto& finding : result.at("findings")) {
    const std::string message = finding.at("message");
    const std::size_t start = message.find('\'') + 1;
    EXPECT_EQ(textAt(finding, bytes), message.substr(start, message.find('\'', start) - start));
    EXPECT_TRUE(finding.contains("id")) << finding;
    EXPECT_FALSE(finding.contains("endLine")) << finding;
    const bool hasReferences = message.find("refer") != std::string::npos;
    EXPECT_TRUE(!hasReferences || finding.contains("related")) << finding;
    for (const auto& place : finding.value("related", nlohmann::json::array())) {
      std::string name = textAt(place, bytes);
      if (name.starts_with("get.")) name.erase(0, 4);
      EXPECT_NE(name, "") << finding;
      EXPECT_TRUE(!isOfName(place) || message.find('\'' + name + '\'') != std::string::npos)
          << finding;
    }
  }
}

// The answer of the service. It would end the process for a class with a missing delimiter.
nlohmann::json answerOf(const Case& tested, const Workspace& space) {
  if (tested.find("missing-delimiter") != nullptr) return nlohmann::json::object();
  const Call call = callOf(tested);
  const ServiceHost host(space.path().string(), call.table);
  return answerOfService(call.className, call.mask, call.includeSuperclasses);
}

// The files after the single replacements of a dry run, which prints what the service answers.
std::map<std::string, std::string> editedFiles(const Case& tested, const Workspace& space) {
  const auto result = space.soca(with(with(argumentsOf(tested), "--format=json"), "--edits"));
  auto files = space.readAll();
  const auto document = nlohmann::json::parse(result.out);
  try {
    if (!callOf(tested).isTidy) expectSameAnswers(document, answerOf(tested, space));
  } catch (const std::out_of_range&) {
    EXPECT_EQ(document.at("errors").at(0).at("id"), "std::out_of_range");
  }
  for (const auto& each : document.at("results")) {
    const auto name = fs::path(each.at("file")).lexically_relative(space.path());
    std::string& bytes = files.at(name.string());
    expectPlaces(each, bytes);
    bytes = applyEdits(each, bytes);
  }
  return files;
}

class CasesThroughTheProgram : public ::testing::TestWithParam<Case> {};

TEST_P(CasesThroughTheProgram, DryRunAndWriteAgree) {
  const Case& tested = GetParam();
  const auto arguments = argumentsOf(tested);
  const Workspace space;
  writeFiles(tested, space);
  const auto expected = expectedFiles(tested, space);
  const bool fails = tested.find("error") != nullptr || tested.find("missing-delimiter") != nullptr;

  const auto dryRun = space.soca(arguments);
  EXPECT_EQ(dryRun.exitCode, fails ? 2 : 0) << dryRun.err;
  const Workspace patched;
  writeFiles(tested, patched);
  patched.write("update.diff", dryRun.out);
  if (!dryRun.out.empty()) {
    const auto applied = patched.run({"git", "apply", "--whitespace=nowarn", "update.diff"});
    EXPECT_EQ(applied.exitCode, 0) << applied.err << dryRun.out;
  }
  fs::remove(patched.path() / "update.diff");
  EXPECT_EQ(patched.readAll(), expected);

  EXPECT_EQ(editedFiles(tested, space), expected);

  const auto written = space.soca(with(arguments, "--write"));
  EXPECT_EQ(written.exitCode, dryRun.exitCode) << written.err;
  EXPECT_EQ(space.readAll(), expected);
}

class KnownCases : public ::testing::TestWithParam<Case> {};

TEST_P(KnownCases, AreRefused) {
  const Workspace space;
  writeFiles(GetParam(), space);
  const auto expected = space.readAll();
  EXPECT_EQ(editedFiles(GetParam(), space), expected);
  const auto result = space.soca(with(argumentsOf(GetParam()), "--write"));
  EXPECT_EQ(result.exitCode, 2);
  const bool isError = GetParam().find("error") != nullptr;
  EXPECT_NE(result.err.find(isError ? "std::out_of_range" : " is refused: "), std::string::npos)
      << result.err;
  EXPECT_EQ(space.readAll(), expected);
}

std::vector<Case> casesForTheProgram() {
  auto cases = findCases(projectPath("tests/cases"));
  std::erase_if(cases, [](const Case& each) { return !callOf(each).isPossible(); });
  return cases;
}

std::string nameOf(const ::testing::TestParamInfo<Case>& info) {
  std::string name = info.param.name;
  std::ranges::replace_if(
      name, [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
  return name;
}

TEST(AsService, ExamplesAreAnsweredAsTheServiceAnswers) {
  const std::string root = projectPath("examples");
  const Workspace space;
  const ServiceHost host(root, {});
  for (const char* superclasses : {"", "-s"}) {
    std::vector<std::string> arguments = {"update", "--as-service", "--format=json", "-p", root};
    if (*superclasses != '\0') arguments.emplace_back(superclasses);
    const auto document = nlohmann::json::parse(space.soca(arguments).out);
    EXPECT_GT(document.at("results").size(), 10U);
    for (const auto& result : document.at("results")) {
      const auto answer = answerOfService(result.at("class"), allFamilies, false);
      expectSameAnswers({{"results", {result}}, {"errors", nlohmann::json::array()}}, answer);
    }
    for (const auto& skipped : document.at("skipped")) {
      const auto answer = answerOfService(skipped.at("class"), allFamilies, *superclasses != '\0');
      expectSameAnswers({{"results", nlohmann::json::array()}, {"errors", {skipped}}}, answer);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, CasesThroughTheProgram, ::testing::ValuesIn(casesForTheProgram()),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(All, KnownCases,
                         ::testing::ValuesIn(findCases(projectPath("tests/known"))), nameOf);

}  // namespace
}  // namespace soca::testing
