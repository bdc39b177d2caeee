// Updates with superclasses, each class once.
#include "reports/outcomes/SharedUpdates.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

using Names = std::vector<std::string>;

// The classes of a run: superclasses that may form cycles, and failures of every scope.
std::map<std::string, SingleUpdate> makeClasses(std::mt19937& random, unsigned count) {
  const auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
  const unsigned failing = 2 + below(20);
  std::map<std::string, SingleUpdate> classes;
  for (unsigned i = 0; i < count; ++i) {
    SingleUpdate& each = classes[fmt::format("C{}", i)];
    for (unsigned rest = below(4); rest > 0; --rest) {
      each.superClasses.push_back(fmt::format("C{}", below(count)));
    }
    if (below(failing) > 0) {
      each.outcome.emplace().update.className = fmt::format("C{}", i);
      continue;
    }
    each.scope = static_cast<FailureScopeType>(below(5));
    each.failure.emplace().message = fmt::format("C{}", i);
    if (each.scope == FailureScopeType::loading) each.superClasses.clear();
  }
  return classes;
}

// What one call of the service comes to: the failures, and the classes with an outcome.
std::pair<Names, Names> callAlone(const std::map<std::string, SingleUpdate>& classes,
                                  const std::string& target) {
  Names walk = {target};
  std::set<std::string> met = {target};
  for (std::size_t i = 0; i < walk.size(); ++i) {
    for (const std::string& name : classes.at(walk[i]).superClasses) {
      if (met.insert(name).second) walk.push_back(name);
    }
  }
  using enum FailureScopeType;
  for (const FailureScopeType stage : {loading, rules, edits}) {
    for (const std::string& name : walk) {
      if (classes.at(name).failure && classes.at(name).scope == stage) return {{name}, {}};
    }
  }
  std::pair<Names, Names> result;
  for (const std::string& name : walk) {
    const SingleUpdate& each = classes.at(name);
    (each.failure ? result.first : result.second).push_back(name);
    if (each.failure && each.scope == FailureScopeType::outcome) break;
  }
  return result;
}

TEST(SharedUpdates, GiveEachTargetTheResultsOfItsOwnCall) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto classes = makeClasses(random, 1 + seed % 20);
    std::atomic<std::size_t> updates = 0;
    SharedUpdates shared([&](const std::string& name) {
      ++updates;
      return classes.at(name);
    });
    {
      std::vector<std::jthread> threads;
      for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
          for (const auto& [name, update] : classes) shared.update(name);
        });
      }
    }
    EXPECT_EQ(updates, classes.size());
    std::set<std::string> taken;
    for (const auto& [name, update] : classes) {
      auto [failures, outcomes] = callAlone(classes, name);
      std::erase_if(outcomes, [&](const auto& each) { return !taken.insert(each).second; });
      Names found;
      for (const Failure& failure : shared.failuresOf(name)) found.push_back(failure.message);
      EXPECT_EQ(found, failures) << name;
      found.clear();
      for (const auto& outcome : shared.takeOutcomes(name)) {
        found.push_back(outcome.update.className);
      }
      EXPECT_EQ(found, outcomes) << name;
    }
  }
}

// The processor time of the program for a chain of classes.
double secondsForChain(int count) {
  const Workspace space;
  space.write("C0.vlm", "classdef C0 < velum.System\nend\n");
  for (int i = 1; i < count; ++i) {
    space.write(
        fmt::format("C{}.vlm", i),
        fmt::format("classdef C{} < C{}\nproperties (Logical)\nP = true;\nend\nend\n", i, i - 1));
  }
  const auto result = space.run(
      {"bash", "-c",
       "TIMEFORMAT=%U; time " + programPath() +
           " update -q -s . 2>&1 >/dev/null | grep -q ' would change, 1 stays as it is$'"});
  EXPECT_EQ(result.exitCode, 0) << count;
  return std::stod(result.err);
}

TEST(SharedUpdates, UpdateAChainInTimeProportionalToItsLength) {
  const double ofShort = secondsForChain(200);
  const double ofLong = secondsForChain(1600);
  EXPECT_LT(ofLong, 24 * std::max(ofShort, 0.02)) << ofShort;
}

}  // namespace
}  // namespace soca::testing
