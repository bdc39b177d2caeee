// Work on a sequence of items by several threads, with the results in the order of the items.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace soca::cli {

// Takes items from `next` until it gives nothing, makes a result of each with `work`, and hands the
// results to `consume` in the order of the items. `next` and `consume` return false or nothing to
// stop; they need no lock of their own, `consume` runs on the calling thread, and `work` runs on
// `jobs` threads at once. With one job all happens on the calling thread.
//
// No more than a few items for each job are under way, so memory does not grow with the sequence.
// None of the three may throw.
template <class Item, class Result>
class OrderedWorkers {
 public:
  using Next = std::function<std::optional<Item>()>;
  using Work = std::function<Result(const Item&)>;
  // May take the result apart.
  using Consume = std::function<bool(Result&)>;

  OrderedWorkers(unsigned jobs, Next next, Work work, Consume consume)
      : jobs_(jobs), next_(std::move(next)), work_(std::move(work)), consume_(std::move(consume)) {}

  void run() {
    if (jobs_ <= 1) return runAlone();
    std::vector<std::jthread> threads;
    threads.reserve(jobs_);
    for (unsigned i = 0; i < jobs_; ++i) threads.emplace_back([this] { workUntilDone(); });
    consumeInOrder();
  }

 private:
  static constexpr std::size_t itemsForEachJob = 8;

  void runAlone() {
    while (auto item = next_()) {
      Result result = work_(*item);
      if (!consume_(result)) return;
    }
  }

  void workUntilDone() {
    while (auto numbered = takeItem()) {
      Result result = work_(numbered->second);
      const std::lock_guard lock(mutex_);
      finished_.emplace(numbered->first, std::move(result));
      if (numbered->first == consumed_) resultIsThere_.notify_one();
    }
  }

  std::optional<std::pair<std::size_t, Item>> takeItem() {
    std::unique_lock lock(mutex_);
    roomIsThere_.wait(lock,
                      [this] { return stopped_ || taken_ < consumed_ + jobs_ * itemsForEachJob; });
    if (stopped_) return std::nullopt;
    auto item = next_();
    if (!item) {
      stopped_ = true;
      roomIsThere_.notify_all();
      resultIsThere_.notify_one();
      return std::nullopt;
    }
    return std::pair(taken_++, std::move(*item));
  }

  void consumeInOrder() {
    std::unique_lock lock(mutex_);
    while (true) {
      resultIsThere_.wait(lock, [this] {
        return finished_.contains(consumed_) || (stopped_ && consumed_ == taken_);
      });
      auto entry = finished_.extract(consumed_);
      if (entry.empty()) return;
      lock.unlock();
      const bool goesOn = consume_(entry.mapped());
      lock.lock();
      ++consumed_;
      if (!goesOn) stopped_ = true;
      roomIsThere_.notify_all();
      if (!goesOn) return;
    }
  }

  unsigned jobs_;
  Next next_;
  Work work_;
  Consume consume_;

  std::mutex mutex_;
  std::condition_variable roomIsThere_;
  std::condition_variable resultIsThere_;
  // Numbers of items: taken from the sequence, and handed to `consume`.
  std::size_t taken_ = 0;
  std::size_t consumed_ = 0;
  bool stopped_ = false;
  std::map<std::size_t, Result> finished_;
};

}  // namespace soca::cli
