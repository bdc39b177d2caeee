// The updates of classes and of their superclasses, which many targets of one run share.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "reports/outcomes/Outcome.h"

namespace soca {

// The scope of a failure: what of a target fails with the class. The first three are the stages of
// a call of the service with superclasses, each of which it does for all classes before the next.
enum class FailureScopeType {
  loading,
  rules,
  edits,
  // The outcomes of the class and of those after it.
  outcome,
  // The outcome of the class alone.
  classOnly
};

// The update of one class.
struct SingleUpdate {
  // Names in UTF-8. Empty if the class could not be loaded.
  std::vector<std::string> superClasses;
  // Exactly one of the two is present.
  std::optional<ClassOutcome> outcome;
  std::optional<Failure> failure;
  FailureScopeType scope = FailureScopeType::loading;
  // All passes, up to one that failed, only if facts about the class are requested.
  std::vector<PassRecord> passes;
};

// Updates each class once, and composes from that what a call of the service with superclasses
// comes to for each target. So a chain of classes takes time in proportion to its length.
//
// Safe to use from several threads. Class names are in UTF-8.
class SharedUpdates {
 public:
  // Called by several threads at once, but once for each class.
  using Update = std::function<SingleUpdate(const std::string& className)>;

  explicit SharedUpdates(Update update) : update_(std::move(update)) {}

  // Updates the class and all that it derives from, except those that were updated before. Passes
  // on the exceptions of the function.
  void update(const std::string& className);

  // The failures of an updated class as a target.
  std::vector<Failure> failuresOf(const std::string& className);

  // The outcomes of an updated class as a target, nearest first, except those that were taken
  // before.
  std::vector<ClassOutcome> takeOutcomes(const std::string& className);

 private:
  enum class StateType { fresh, inProgress, done };

  struct Class {
    StateType state = StateType::fresh;
    // Whether all that it derives from is done as well.
    bool isComplete = false;
    // Whether, moreover, all outcomes were taken and none of the classes failed.
    bool isSettled = false;
    // The last walk that met it.
    std::uint64_t walk = 0;
    std::string name;
    std::vector<Class*> superClasses;
    std::optional<ClassOutcome> outcome;
    std::optional<Failure> failure;
    FailureScopeType scope = FailureScopeType::loading;
  };

  using Lock = std::unique_lock<std::mutex>;

  Class& find(const std::string& className);
  // Releases the lock meanwhile.
  void finish(Class& each, Lock& lock);
  void store(SingleUpdate&& update, Class& each);
  // The class and all that it derives from, breadth first as in the service, without those that
  // are settled.
  std::vector<Class*> unsettledClassesOf(Class& first);
  // The class whose failure is that of the whole target; null if there is none.
  static Class* findFatal(const std::vector<Class*>& classes);

  Update update_;
  std::mutex mutex_;
  std::condition_variable isDone_;
  std::unordered_map<std::string, std::unique_ptr<Class>> classes_;
  std::uint64_t lastWalk_ = 0;
};

}  // namespace soca
