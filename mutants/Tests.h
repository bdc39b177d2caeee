// The tests of the copy.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

struct Test {
  std::string name;
  // The program of GoogleTest that it is part of; empty for others, which ctest runs.
  std::string program;
  std::string folder;
  // A command for the shell.
  std::string command;

  // Found by a run without a mistake.
  double seconds = 0;
  std::vector<unsigned> reached;
};

// Runs tests in a temporary folder of their own.
class TestRunner {
 public:
  // The build folder of the copy, and a folder for files that are needed for one run only.
  TestRunner(std::filesystem::path build, std::filesystem::path scratch);

  // All tests that pass without a mistake within `limit` seconds, the quickest first.
  std::vector<Test> explore(double limit) const;

  // The name of a test that fails with the mistake, or does not end in good time; empty if all
  // pass. The test `likely` is run first.
  std::string findFailing(const std::vector<Test>& tests, const Mistake& mistake,
                          const std::string& likely) const;

 private:
  std::vector<Test> list() const;
  void exploreTest(Test& test) const;
  bool passes(const Test& test, const std::string& setting, double limit) const;
  Test join(const std::vector<Test>& tests) const;

  std::filesystem::path build_;
  std::filesystem::path scratch_;
};

}  // namespace mutants
