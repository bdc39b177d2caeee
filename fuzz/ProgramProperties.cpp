#include "fuzz/ProgramProperties.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "fuzz/RandomClass.h"
#include "fuzz/Violation.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/text/Conversions.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::fuzz {
namespace {

using nlohmann::json;
using testing::ProgramResult;
using testing::Workspace;

// The file names and texts of the classes.
std::map<std::string, std::string> makeFiles(std::uint64_t firstSeed, std::uint64_t count) {
  std::map<std::string, std::string> files;
  for (std::uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
    for (const RandomClass& each : makeRandomClasses(seed, fmt::format("_{}", seed))) {
      std::string name = each.file.className;
      std::ranges::replace(name, '.', '/');
      files[name + ".vlm"] = fl::i18n::to_string(each.file.text);
    }
  }
  return files;
}

std::vector<std::string> classNames(const std::map<std::string, std::string>& files) {
  std::vector<std::string> names;
  for (const auto& [path, text] : files) {
    std::string name = path.substr(0, path.size() - 4);
    std::ranges::replace(name, '/', '.');
    names.push_back(name);
  }
  return names;
}

ProgramResult updateAsJson(const Workspace& space, const char* jobs,
                           const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments = {"update", "--format", "json", "-j", jobs};
  arguments.insert(arguments.end(), more.begin(), more.end());
  ProgramResult result = space.soca(arguments);
  require(result.exitCode == 0 || result.exitCode == 2, "the program ends with {}: {}",
          result.exitCode, result.err);
  return result;
}

// The entries of all classes by name; results for unnamed classes are omitted.
std::map<std::string, json> outcomes(const ProgramResult& result) {
  std::map<std::string, json> found;
  const json document = json::parse(result.out);
  for (const char* part : {"results", "errors"}) {
    for (const json& entry : document.at(part)) found[entry.at("class")] = entry;
  }
  return found;
}

void checkAnyOrder(const Workspace& space, const std::map<std::string, std::string>& files,
                   const ProgramResult& inOrder) {
  std::vector<std::string> names = classNames(files);
  std::ranges::reverse(names);
  const auto reversed = outcomes(updateAsJson(space, "2", names));
  for (const auto& [name, entry] : outcomes(inOrder)) {
    const auto found = reversed.find(name);
    require(found != reversed.end() && found->second == entry,
            "class {} has another outcome in another order", name);
  }
}

void checkWritten(const std::string& name, const std::string& text) {
  const auto analysis = ca::analyzeText(fl::i18n::to_ustring(text));
  require(!analysis->hasSyntaxError(), "{} is written with syntax errors", name);
}

void checkWriting(const Workspace& space, std::map<std::string, std::string> expected,
                  const ProgramResult& dryRun) {
  const auto old = expected;
  for (const auto& [name, entry] : outcomes(dryRun)) {
    if (!entry.contains("text") || entry.contains("refused")) continue;
    std::string path = name;
    std::ranges::replace(path, '.', '/');
    expected.at(path + ".vlm") = entry.at("text");
  }
  space.soca({"update", "--write", "-q", "-j", "2"});
  const auto found = space.readAll();
  require(found.size() == expected.size(), "files appear or vanish");
  for (const auto& [name, text] : found) {
    require(text == expected.at(name), "{} is not written as it was told", name);
    if (text != old.at(name)) checkWritten(name, text);
  }
}

}  // namespace

void checkProgram(std::uint64_t firstSeed, std::uint64_t count) {
  const Workspace space;
  const auto files = makeFiles(firstSeed, count);
  for (const auto& [name, text] : files) space.write(name, text);
  const ProgramResult one = updateAsJson(space, "1");
  const ProgramResult four = updateAsJson(space, "4");
  require(one.out == four.out && one.err == four.err && one.exitCode == four.exitCode,
          "another number of jobs prints something else");
  checkAnyOrder(space, files, one);
  require(space.readAll() == files, "a dry run writes");
  checkWriting(space, files, one);
}

}  // namespace soca::fuzz
