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

using Files = std::map<std::string, std::string>;

// The file of the class, relative to its root.
std::string fileOf(std::string className) {
  std::ranges::replace(className, '.', '/');
  return className + ".vlm";
}

// The classes, of which many derive from a few that were made shortly before them.
Files makeFiles(std::uint64_t firstSeed, std::uint64_t count) {
  constexpr std::size_t mostInFamily = 12;
  Files files;
  std::vector<fl::ustring> family;
  for (std::uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
    for (const RandomClass& each : makeRandomClasses(seed, fmt::format("_{}", seed), family)) {
      const auto analysis = ca::analyzeText(each.file.text);
      require(!analysis->hasSyntaxError(), "class {} has a syntax error", each.file.className);
      files[fileOf(each.file.className)] = fl::i18n::to_string(each.file.text);
      family.push_back(fl::i18n::to_ustring(each.file.className));
    }
    if (family.size() > mostInFamily) {
      family.erase(family.begin(), family.end() - static_cast<std::ptrdiff_t>(mostInFamily));
    }
  }
  return files;
}

std::vector<std::string> classNames(const Files& files) {
  std::vector<std::string> names;
  for (const auto& [path, text] : files) {
    std::string name = path.substr(0, path.size() - 4);
    std::ranges::replace(name, '/', '.');
    names.push_back(name);
  }
  return names;
}

// The entries of all classes by name; results for unnamed classes are omitted.
std::map<std::string, json> outcomesOf(const json& document) {
  std::map<std::string, json> found;
  for (const char* part : {"results", "errors", "undecided"}) {
    for (const json& entry : document.at(part)) found[entry.at("class")] = entry;
  }
  return found;
}

// One folder of classes, and how the program updates them.
class FolderCheck {
 public:
  FolderCheck(std::uint64_t firstSeed, std::uint64_t count)
      : files_(makeFiles(firstSeed, count)),
        risk_(firstSeed / count % 2 == 0 ? "review" : "unsafe"),
        isTidy_(firstSeed / count % 3 == 0) {
    for (const auto& [name, text] : files_) space_.write(name, text);
  }

  void run() {
    dryRun_ = update({"--format", "json"}, 1);
    const auto document = json::parse(dryRun_.out);
    outcomes_ = outcomesOf(document);
    hasFailed_ = !document.at("errors").empty() || !document.at("undecided").empty();
    findExpected();
    requireExitCode(dryRun_, false);
    checkJobs();
    checkAnyOrder();
    requireExitCode(update({"--check", "-q"}, 2), expected_ != files_);
    require(space_.readAll() == files_, "a dry run writes");
    checkWriting();
    checkSecond();
  }

 private:
  ProgramResult update(const std::vector<std::string>& options, unsigned jobs) const {
    std::vector<std::string> arguments = {"update", "--risk", risk_, "-j", std::to_string(jobs)};
    if (isTidy_) arguments.emplace_back("--tidy");
    arguments.insert(arguments.end(), options.begin(), options.end());
    return space_.soca(arguments);
  }

  // Failed classes count more than a difference that `--check` finds.
  void requireExitCode(const ProgramResult& result, bool findsChanges) const {
    const int expected = hasFailed_ ? 2 : findsChanges ? 1 : 0;
    require(result.exitCode == expected, "the program ends with {}, not {}: {}", result.exitCode,
            expected, result.err);
  }

  void findExpected() {
    expected_ = files_;
    for (const auto& [name, entry] : outcomes_) {
      if (entry.contains("text")) expected_.at(fileOf(name)) = entry.at("text");
    }
  }

  void checkJobs() const {
    const ProgramResult four = update({"--format", "json"}, 4);
    require(dryRun_.out == four.out && dryRun_.err == four.err && dryRun_.exitCode == four.exitCode,
            "another number of jobs prints something else");
  }

  void checkAnyOrder() const {
    std::vector<std::string> arguments = {"--format", "json"};
    const auto names = classNames(files_);
    arguments.insert(arguments.end(), names.rbegin(), names.rend());
    const auto reversed = outcomesOf(json::parse(update(arguments, 2).out));
    for (const auto& [name, entry] : outcomes_) {
      const auto found = reversed.find(name);
      require(found != reversed.end() && found->second == entry,
              "class {} has another outcome in another order", name);
    }
  }

  void checkWriting() const {
    requireExitCode(update({"--write", "-q"}, 4), false);
    const Files found = space_.readAll();
    require(found.size() == expected_.size(), "files appear or vanish");
    for (const auto& [name, text] : found) {
      require(text == expected_.at(name), "{} is not written as it was printed", name);
      if (text == files_.at(name)) continue;
      const auto analysis = ca::analyzeText(fl::i18n::to_ustring(text));
      require(!analysis->hasSyntaxError(), "{} is written with syntax errors", name);
    }
  }

  void checkSecond() {
    const ProgramResult result = update({"--write"}, 2);
    const Files found = space_.readAll();
    for (const auto& [name, text] : found) {
      require(text == expected_.at(name), "{} changes once more", name);
    }
    // A cycle of superclasses may have lost the mixin that made it one of System objects, so that
    // classes are undecided whose other superclasses are unknown.
    hasFailed_ = hasFailed_ || result.err.find("undecided: ") != std::string::npos;
    requireExitCode(result, false);
  }

  Workspace space_;
  Files files_;
  std::string risk_;
  bool isTidy_;
  ProgramResult dryRun_;
  std::map<std::string, json> outcomes_;
  bool hasFailed_ = false;
  // The files as the dry run printed them.
  Files expected_;
};

}  // namespace

void checkProgram(std::uint64_t firstSeed, std::uint64_t count) {
  FolderCheck(firstSeed, count).run();
}

}  // namespace soca::fuzz
