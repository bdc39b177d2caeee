#include "reports/passes/OrderedWorkers.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <atomic>
#include <chrono>

namespace soca::cli {
namespace {

using Workers = OrderedWorkers<int, int>;

// Items 0 to `count` - 1.
Workers::Next countTo(int count, int& taken) {
  return [count, &taken]() -> std::optional<int> {
    if (taken == count) return std::nullopt;
    return taken++;
  };
}

TEST(OrderedWorkers, ResultsComeInTheOrderOfTheItems) {
  for (const unsigned jobs : {1U, 2U, 7U}) {
    int taken = 0;
    std::vector<int> results;
    std::atomic<int> furthest = 0;
    int farAhead = 0;
    Workers(
        jobs, countTo(500, taken),
        [&](int item) {
          if (item % 50 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
          if (item > furthest) furthest = item;
          return item * 2;
        },
        [&](int result) {
          farAhead = std::max(farAhead, furthest - result / 2);
          results.push_back(result);
          return true;
        })
        .run();
    ASSERT_EQ(results.size(), 500);
    for (int i = 0; i < 500; ++i) EXPECT_EQ(results[static_cast<std::size_t>(i)], 2 * i);
    EXPECT_LE(farAhead, static_cast<int>(jobs) * 8) << "what waits must not grow";
  }
}

TEST(OrderedWorkers, StopsWhenTheConsumerStops) {
  for (const unsigned jobs : {1U, 3U}) {
    int taken = 0;
    int consumed = 0;
    Workers(
        jobs, countTo(100'000, taken), [](int item) { return item; },
        [&](int) { return ++consumed < 10; })
        .run();
    EXPECT_EQ(consumed, 10);
    EXPECT_LT(taken, 100);
  }
}

TEST(OrderedWorkers, WhatIsThrownStopsTheWorkAndLeavesRun) {
  enum class PlaceType { next, work, consume };
  for (const PlaceType place : {PlaceType::next, PlaceType::work, PlaceType::consume}) {
    for (const unsigned jobs : {1U, 3U}) {
      int taken = 0;
      const auto throwAt = [&](PlaceType here, int item) {
        if (place == here && item == 40) throw std::runtime_error("no more");
      };
      Workers workers(
          jobs,
          [&]() -> std::optional<int> {
            throwAt(PlaceType::next, taken);
            return taken++;
          },
          [&](int item) {
            throwAt(PlaceType::work, item);
            return item;
          },
          [&](int item) {
            throwAt(PlaceType::consume, item);
            return true;
          });
      EXPECT_THROW(workers.run(), std::runtime_error);
      EXPECT_LT(taken, 40 + 2 * 8 * 3);
    }
  }
}

TEST(OrderedWorkers, NothingToDo) {
  int taken = 0;
  Workers(
      4, countTo(0, taken), [](int item) { return item; },
      [](int) -> bool { throw std::logic_error("nothing was made"); })
      .run();
}

}  // namespace
}  // namespace soca::cli
