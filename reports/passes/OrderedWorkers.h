// Processes a sequence of items by several threads, with the results in the order of the items.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace soca {

// Takes items from `next` until it returns none, makes a result of each with `work`, and passes the
// results to `consume` in the order of the items. `next` and `consume` return none or false to
// stop; they need no lock of their own. `work` runs on `jobs` threads at once. The calling thread
// is one of them, and is the only one for `consume`: a separate thread would have to be woken for
// each result.
//
// At most a few items for each job are in progress, so that memory does not grow with the sequence.
// An exception of any of the three stops the work as well, and is thrown by `run` once all threads
// have ended; of several exceptions the first is kept. So does a thread that cannot be
// started, with std::system_error.
template <class Item, class Result>
class OrderedWorkers {
 public:
  using Next = std::function<std::optional<Item>()>;
  using Work = std::function<Result(const Item&)>;
  // May move parts out of the result.
  using Consume = std::function<bool(Result&)>;

  OrderedWorkers(unsigned jobs, Next next, Work work, Consume consume)
      : next_(std::move(next)),
        work_(std::move(work)),
        consume_(std::move(consume)),
        finished_(std::size_t{std::max(jobs, 1U)} * itemsForEachJob),
        otherThreads_(std::max(jobs, 1U) - 1) {}

  void run() {
    std::vector<std::jthread> threads;
    threads.reserve(otherThreads_);
    try {
      while (threads.size() < otherThreads_) threads.emplace_back([this] { workUntilDone(); });
    } catch (...) {
      const Lock lock(mutex_);
      fail(std::current_exception());
    }
    workAndConsume();
    threads.clear();
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  using Lock = std::unique_lock<std::mutex>;

  static constexpr std::size_t itemsForEachJob = 8;

  void workUntilDone() {
    Lock lock(mutex_);
    while (!stopped_) {
      if (hasRoom()) {
        workOnNext(lock);
      } else {
        roomIsThere_.wait(lock);
      }
    }
  }

  void workAndConsume() {
    Lock lock(mutex_);
    while (!failure_) {
      if (finishedAt(consumed_)) {
        if (!consumeNext(lock)) return;
      } else if (!stopped_ && hasRoom()) {
        workOnNext(lock);
      } else if (stopped_ && consumed_ == taken_) {
        return;
      } else {
        resultIsThere_.wait(lock);
      }
    }
  }

  bool hasRoom() const { return taken_ < consumed_ + finished_.size(); }

  std::optional<Result>& finishedAt(std::size_t number) {
    return finished_[number % finished_.size()];
  }

  void stop() {
    stopped_ = true;
    roomIsThere_.notify_all();
    resultIsThere_.notify_one();
  }

  void fail(std::exception_ptr failure) {
    if (!failure_) failure_ = std::move(failure);
    stop();
  }

  // The lock is released during the work.
  void workOnNext(Lock& lock) {
    std::optional<Item> item;
    try {
      item = next_();
    } catch (...) {
      return fail(std::current_exception());
    }
    if (!item) return stop();
    const std::size_t number = taken_++;
    lock.unlock();
    std::optional<Result> result;
    std::exception_ptr failure;
    try {
      result = work_(*item);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    if (failure) return fail(std::move(failure));
    finishedAt(number) = std::move(result);
    if (number == consumed_) resultIsThere_.notify_one();
  }

  // The lock is released meanwhile, because no other thread uses a finished result. Returns whether
  // to continue.
  bool consumeNext(Lock& lock) {
    std::optional<Result>& result = finishedAt(consumed_);
    lock.unlock();
    bool goesOn = false;
    std::exception_ptr failure;
    try {
      goesOn = consume_(*result);
      result.reset();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    if (failure) fail(std::move(failure));
    ++consumed_;
    roomIsThere_.notify_one();
    if (!goesOn) stop();
    return goesOn;
  }

  Next next_;
  Work work_;
  Consume consume_;

  std::mutex mutex_;
  std::condition_variable roomIsThere_;
  std::condition_variable resultIsThere_;
  // Numbers of items: taken from the sequence, and passed to `consume`.
  std::size_t taken_ = 0;
  std::size_t consumed_ = 0;
  bool stopped_ = false;
  std::exception_ptr failure_;
  // A ring buffer of the finished results, each at its number modulo the size.
  std::vector<std::optional<Result>> finished_;
  // The number of threads other than the calling one.
  unsigned otherThreads_;
};

}  // namespace soca
