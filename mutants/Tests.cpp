#include "mutants/Tests.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "mutants/Copy.h"

namespace mutants {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// A test with a mistake may take so much longer than without, on a busy machine.
constexpr double secondsBesides = 10;
constexpr double timesLonger = 10;

// Quicker tests of one program run together, in one process.
constexpr double quickTest = 0.5;

// A mistake may write or allocate without end.
constexpr rlim_t largestFile = rlim_t{2} << 30U;
constexpr rlim_t mostMemory = rlim_t{16} << 30U;

double limitOf(const Test& test) { return secondsBesides + timesLonger * test.seconds; }

void limitResources() {
  const rlimit file{largestFile, largestFile};
  const rlimit memory{mostMemory, mostMemory};
  const rlimit core{0, 0};
  ::setrlimit(RLIMIT_FSIZE, &file);
  ::setrlimit(RLIMIT_AS, &memory);
  ::setrlimit(RLIMIT_CORE, &core);
}

std::string folderOf(const json& test) {
  for (const json& property : test.value("properties", json::array())) {
    if (property.at("name") == "WORKING_DIRECTORY") return property.at("value");
  }
  return ".";
}

Test testOf(const json& entry, unsigned number, const std::string& build) {
  Test test{.name = entry.at("name"), .folder = folderOf(entry)};
  const auto words = entry.value("command", std::vector<std::string>());
  const std::string option = "--gtest_filter=";
  if (words.size() > 1 && words[1].starts_with(option)) {
    test.name = words[1].substr(option.size());
    test.program = words[0];
    test.command = fmt::format("'{}' '{}'", words[0], words[1]);
  } else {
    test.command = fmt::format("ctest --test-dir '{}' -I {},{}", build, number, number);
  }
  return test;
}

bool runCommand(const std::string& command) {
  const int status = std::system(command.c_str());
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) throw std::runtime_error("interrupted");
  return status == 0;
}

}  // namespace

TestRunner::TestRunner(fs::path build, fs::path scratch)
    : build_(std::move(build)), scratch_(std::move(scratch)) {
  limitResources();
}

std::vector<Test> TestRunner::list() const {
  const std::string file = scratch_ / "tests.json";
  if (!runCommand(
          fmt::format("ctest --test-dir '{}' --show-only=json-v1 >'{}'", build_.string(), file))) {
    throw std::runtime_error("ctest does not list the tests");
  }
  std::vector<Test> tests;
  const json listed = json::parse(readFile(file));
  for (const json& entry : listed.at("tests")) {
    tests.push_back(testOf(entry, static_cast<unsigned>(tests.size() + 1), build_));
  }
  return tests;
}

bool TestRunner::passes(const Test& test, const std::string& setting, double limit) const {
  const fs::path folder = scratch_ / "home";
  fs::remove_all(folder);
  fs::create_directories(folder);
  return runCommand(
      fmt::format("cd '{0}' && TMPDIR='{1}' HOME='{1}' {2} timeout -s KILL {3:.1f} {4} "
                  "</dev/null >/dev/null 2>&1",
                  test.folder, folder.string(), setting, limit, test.command));
}

std::vector<Test> TestRunner::explore(double limit) const {
  std::vector<Test> tests = list();
  const fs::path reached = scratch_ / "reached";
  for (Test& test : tests) {
    std::ofstream(reached) << std::string(numberLimit, '\0');
    const auto start = std::chrono::steady_clock::now();
    if (!passes(test, fmt::format("MUTANTS_REACHED='{}'", reached.string()), limit)) {
      fmt::print(stderr, "mutants: left out, since it fails or takes {} s: {}\n", limit, test.name);
      continue;
    }
    test.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const std::string bytes = readFile(reached);
    for (unsigned i = 0; i < bytes.size(); ++i) {
      if (bytes[i] != 0) test.reached.push_back(i);
    }
  }
  std::ranges::stable_sort(tests, {}, &Test::seconds);
  return tests;
}

// One test that runs all of these, which are of one program.
Test TestRunner::join(const std::vector<Test>& tests) const {
  Test all{.name = tests.front().name, .folder = tests.front().folder};
  const std::string flags = scratch_ / "flags";
  std::ofstream file(flags);
  file << "--gtest_fail_fast\n--gtest_filter=";
  for (const Test& test : tests) {
    file << test.name << ':';
    all.seconds += test.seconds;
  }
  all.command = fmt::format("'{}' '--gtest_flagfile={}'", tests.front().program, flags);
  return all;
}

std::string TestRunner::findFailing(const std::vector<Test>& tests, const Mistake& mistake,
                                    const std::string& likely) const {
  const std::string setting = fmt::format("MUTANTS_SELECTED={}", mistake.number);
  const auto fails = [&](const Test& test) { return !passes(test, setting, limitOf(test)); };
  std::map<std::string, std::vector<Test>> quick;
  std::vector<Test> slow;
  for (const Test& test : tests) {
    if (!std::ranges::binary_search(test.reached, mistake.number)) continue;
    if (test.name == likely && fails(test)) return likely;
    const bool isQuick = test.seconds < quickTest && !test.program.empty();
    (isQuick ? quick[test.program] : slow).push_back(test);
  }
  for (const auto& [program, joined] : quick) {
    if (!fails(join(joined))) continue;
    const auto failing = std::ranges::find_if(joined, fails);
    if (failing != joined.end()) return failing->name;
  }
  const auto failing = std::ranges::find_if(slow, [&](const Test& test) {
    // A busy machine may make a test fail once.
    return fails(test) && !passes(test, setting, limitOf(test));
  });
  return failing != slow.end() ? failing->name : "";
}

}  // namespace mutants
