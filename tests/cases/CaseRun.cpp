#include "tests/cases/CaseRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/ClassTable.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "service/UpdaterImpl.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;
using fl::i18n::to_string;

constexpr const char* rootPlaceholder = "{root}";

// A temporary class path, deleted with the object.
class CaseFolder {
 public:
  CaseFolder() { PathDispatcher::getDispatcher().setClassPath({root_.string()}); }
  ~CaseFolder() { sotarn::setClassTable(nullptr); }
  CaseFolder(const CaseFolder&) = delete;
  CaseFolder& operator=(const CaseFolder&) = delete;

  // A path that ends in `/` is a folder.
  void write(const std::string& path, const std::string& text) const {
    fs::create_directories((root_ / path).parent_path());
    if (!path.ends_with('/')) std::ofstream(root_ / path, std::ios::binary) << text;
  }

  std::string relative(const fl::ustring& path) const {
    return fs::path(to_string(path)).lexically_relative(root_).string();
  }

  // The text with the folder's path as a placeholder.
  std::string portable(std::string text) const {
    const std::string root = root_.string();
    for (std::size_t at = 0; (at = text.find(root, at)) != std::string::npos;) {
      text.replace(at, root.size(), rootPlaceholder);
    }
    return text;
  }

 private:
  TemporaryFolder folder_;
  fs::path root_ = fs::canonical(folder_.path());
};

struct Options {
  fl::ustring className;
  UpdateMask mask = allFamilies;
  bool includeSuperclasses = false;
  bool isTidy = false;
};

// The options of the case; the default class is that of the first file.
Options optionsOf(const Case& testCase) {
  Options options;
  const std::string before = "before/";
  const auto first = std::ranges::find_if(
      testCase.sections, [&](const Section& section) { return section.name.starts_with(before); });
  if (first != testCase.sections.end()) {
    std::string name = fs::path(first->name.substr(before.size())).replace_extension().string();
    std::ranges::replace(name, '/', '.');
    options.className = fl::i18n::to_ustring(name);
  }
  const Section* section = testCase.find("options");
  std::istringstream in(section != nullptr ? section->text : "");
  for (std::string word; in >> word;) {
    if (word == "class" && in >> word) {
      options.className = fl::i18n::to_ustring(word);
    } else if (word == "mask") {
      in >> options.mask;
    } else if (word == "superclasses") {
      options.includeSuperclasses = true;
    } else if (word == "tidy") {
      options.isTidy = true;
    } else {
      ADD_FAILURE() << "unknown option: " << word;
    }
  }
  return options;
}

// The failure of `work`, as "id: text"; empty if it succeeds.
std::string failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const foundation::core::except::IMsgIDException& failure) {
    return failure.GetID() + ": " + to_string(failure.GetUnicodeMessageTxt());
  } catch (const std::out_of_range&) {
    return "std::out_of_range";
  }
  return "";
}

void expectSameResults(const std::vector<PlannedClass>& planned,
                       const std::vector<UpdateResult>& results) {
  ASSERT_EQ(planned.size(), results.size());
  for (std::size_t i = 0; i < results.size(); ++i) {
    const UpdateResult& plannedResult = planned[i].result;
    EXPECT_EQ(plannedResult.className, results[i].className);
    EXPECT_EQ(plannedResult.fileName, results[i].fileName);
    EXPECT_EQ(planned[i].text(), results[i].text);
    EXPECT_EQ(plannedResult.messages, results[i].messages);
    EXPECT_EQ(plannedResult.updated, results[i].updated);
    EXPECT_EQ(planned[i].actions.empty(), !results[i].updated);
  }
}

std::string describeMissing(const std::vector<PlannedClass>& planned) {
  std::ostringstream text;
  for (const PlannedClass& entry : planned) {
    if (!entry.missingDelimiter) continue;
    EXPECT_FALSE(entry.result.updated);
    EXPECT_EQ(entry.text(), entry.analysis->sourceTextView());
    text << to_string(entry.result.className) << ": (" << entry.missingDelimiter->line << ','
         << entry.missingDelimiter->column << ")\n";
  }
  return text.str();
}

void addResults(const std::vector<UpdateResult>& results, const CaseFolder& folder,
                const Case& testCase, CaseOutcome& outcome) {
  for (const UpdateResult& result : results) {
    const std::string path = folder.relative(result.fileName);
    if (result.updated) {
      outcome.sections["after/" + path] = to_string(result.text);
    } else {
      const Section* before = testCase.find("before/" + path);
      EXPECT_EQ(to_string(result.text), before != nullptr ? before->text : "") << path;
    }
    for (const fl::ustring& message : result.messages) {
      const std::string prefix = results.size() > 1 ? to_string(result.className) + ": " : "";
      outcome.sections["messages"] += prefix + to_string(message) + "\n";
    }
  }
}

// The service makes no tidy edits, so only a plan has them.
void planTidily(const Options& options, const CaseFolder& folder, const Case& testCase,
                CaseOutcome& outcome) {
  std::vector<UpdateResult> results;
  for (const PlannedClass& planned :
       planUpdate(options.className, options.mask, options.includeSuperclasses,
                  {.listFaults = true, .isTidy = true})) {
    EXPECT_TRUE(planned.faults.empty());
    results.push_back(planned.result);
    results.back().text = planned.text();
  }
  addResults(results, folder, testCase, outcome);
}

// Runs the update. If the service would end the process, makes only the plan.
void update(const Options& options, const CaseFolder& folder, const Case& testCase,
            CaseOutcome& outcome) {
  std::vector<PlannedClass> planned;
  std::string failure = failureOf(
      [&] { planned = planUpdate(options.className, options.mask, options.includeSuperclasses); });
  const std::string missing = describeMissing(planned);
  if (planned.size() == 1) {
    EXPECT_EQ(repeatUpdate(options.className, options.mask).changesAgain,
              !missing.empty() || planned.front().text() != *planned.front().oldText);
  }
  if (!missing.empty()) {
    outcome.sections["missing-delimiter"] = missing;
    return;
  }
  std::vector<UpdateResult> results;
  UpdaterImpl updater;
  EXPECT_EQ(failureOf([&] {
              results =
                  updater.update(options.className, options.mask, options.includeSuperclasses);
            }),
            failure);
  expectSameResults(planned, results);
  for (const PlannedClass& each : planned) {
    for (const RuleFinding& finding : each.findings) {
      outcome.findings.insert(finding.message.catalog + ":" + finding.message.id);
    }
  }
  if (!failure.empty()) outcome.sections["error"] = folder.portable(failure) + "\n";
  addResults(results, folder, testCase, outcome);
}

void updateAgain(const Options& options, const CaseFolder& folder, CaseOutcome& outcome) {
  if (outcome.sections.contains("error") || outcome.sections.contains("missing-delimiter")) return;
  const std::string after = "after/";
  for (const auto& [name, text] : outcome.sections) {
    if (name.starts_with(after)) folder.write(name.substr(after.size()), text);
  }
  outcome.again = failureOf([&] {
                    for (const PlannedClass& planned :
                         planUpdate(options.className, options.mask, options.includeSuperclasses)) {
                      if (!planned.actions.empty()) outcome.again += to_string(planned.text());
                    }
                  }) +
                  outcome.again;
}

void report(const std::string& section, const Case& testCase, const CaseFolder& folder,
            const std::function<fl::ustring()>& makeReport, CaseOutcome& outcome) {
  if (testCase.find(section) == nullptr) return;
  std::string& text = outcome.sections[section];
  const std::string failure = failureOf([&] { text = to_string(makeReport()); });
  if (!failure.empty()) text = failure + "\n";
  text = folder.portable(text);
}

}  // namespace

bool isInput(const Section& section) {
  constexpr std::array<const char*, 4> names = {"options", "table", "again", "why"};
  return section.name.starts_with("before/") ||
         std::ranges::find(names, section.name) != names.end();
}

CaseOutcome runCase(const Case& testCase) {
  const CaseFolder folder;
  const std::string before = "before/";
  for (const Section& section : testCase.sections) {
    if (section.name.starts_with(before)) {
      folder.write(section.name.substr(before.size()), section.text);
    }
    if (section.name == "table") {
      sotarn::setClassTable(
          std::make_shared<sotarn::ClassTable>(sotarn::parseClassTable(section.text)));
    }
  }
  const Options options = optionsOf(testCase);
  UpdaterImpl updater;
  CaseOutcome outcome;
  if (options.isTidy) {
    planTidily(options, folder, testCase, outcome);
  } else {
    update(options, folder, testCase, outcome);
  }
  report(
      "actions", testCase, folder,
      [&] { return updater.reportActions(options.className, options.includeSuperclasses); },
      outcome);
  report(
      "classes", testCase, folder, [&] { return updater.reportClass(options.className); }, outcome);
  updateAgain(options, folder, outcome);
  return outcome;
}

}  // namespace soca::testing
