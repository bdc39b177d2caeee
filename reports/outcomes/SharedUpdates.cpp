#include "reports/outcomes/SharedUpdates.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_set>
#include <utility>

namespace soca {

void SharedUpdates::update(const std::string& className) {
  Lock lock(mutex_);
  std::vector<Class*> classes = {&find(className)};
  std::unordered_set<const Class*> met = {classes.front()};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    if (classes[i]->isComplete) continue;
    finish(*classes[i], lock);
    for (Class* superClass : classes[i]->superClasses) {
      if (met.insert(superClass).second) classes.push_back(superClass);
    }
  }
  for (Class* each : classes) each->isComplete = true;
}

std::vector<Failure> SharedUpdates::failuresOf(const std::string& className) {
  const Lock lock(mutex_);
  Class& target = find(className);
  const std::vector<Class*> classes = unsettledClassesOf(target);
  if (const Class* fatal = findFatal(classes)) {
    // All targets that derive from this one fail as well, so nobody takes it.
    target.outcome.reset();
    return {*fatal->failure};
  }
  std::vector<Failure> failures;
  for (const Class* each : classes) {
    if (!each->failure) continue;
    failures.push_back(*each->failure);
    if (each->scope == FailureScopeType::outcome) break;
  }
  return failures;
}

std::vector<ClassOutcome> SharedUpdates::takeOutcomes(const std::string& className) {
  const Lock lock(mutex_);
  const std::vector<Class*> classes = unsettledClassesOf(find(className));
  std::vector<ClassOutcome> outcomes;
  if (findFatal(classes) != nullptr) return outcomes;
  for (Class* each : classes) {
    if (each->failure && each->scope == FailureScopeType::outcome) return outcomes;
    if (each->outcome) outcomes.push_back(std::move(*each->outcome));
    each->outcome.reset();
  }
  const auto failed = [](const Class* each) { return each->failure.has_value(); };
  if (std::ranges::none_of(classes, failed)) {
    for (Class* each : classes) each->isSettled = true;
  }
  return outcomes;
}

SharedUpdates::Class& SharedUpdates::find(const std::string& className) {
  std::unique_ptr<Class>& found = classes_[className];
  if (found == nullptr) {
    found = std::make_unique<Class>();
    found->name = className;
  }
  return *found;
}

void SharedUpdates::finish(Class& each, Lock& lock) {
  isDone_.wait(lock, [&] { return each.state != StateType::inProgress; });
  if (each.state == StateType::done) return;
  each.state = StateType::inProgress;
  lock.unlock();
  try {
    SingleUpdate update = update_(each.name);
    lock.lock();
    store(std::move(update), each);
  } catch (...) {
    // Another thread that waits for the class must not wait for ever.
    if (!lock.owns_lock()) lock.lock();
    each.state = StateType::fresh;
    isDone_.notify_all();
    throw;
  }
}

void SharedUpdates::store(SingleUpdate&& update, Class& each) {
  for (const std::string& name : update.superClasses) each.superClasses.push_back(&find(name));
  each.outcome = std::move(update.outcome);
  each.failure = std::move(update.failure);
  each.scope = update.scope;
  each.state = StateType::done;
  isDone_.notify_all();
}

std::vector<SharedUpdates::Class*> SharedUpdates::unsettledClassesOf(Class& first) {
  std::vector<Class*> classes;
  const auto add = [&, walk = ++lastWalk_](Class& each) {
    if (each.isSettled || each.walk == walk) return;
    each.walk = walk;
    classes.push_back(&each);
  };
  add(first);
  for (std::size_t i = 0; i < classes.size(); ++i) {
    for (Class* superClass : classes[i]->superClasses) add(*superClass);
  }
  return classes;
}

SharedUpdates::Class* SharedUpdates::findFatal(const std::vector<Class*>& classes) {
  using enum FailureScopeType;
  for (const FailureScopeType stage : {loading, rules, edits}) {
    const auto failed = [&](const Class* each) { return each->failure && each->scope == stage; };
    const auto found = std::ranges::find_if(classes, failed);
    if (found != classes.end()) return *found;
  }
  return nullptr;
}

}  // namespace soca
