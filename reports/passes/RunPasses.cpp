#include "reports/passes/RunPasses.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <ranges>
#include <tuple>
#include <type_traits>
#include <unordered_set>

#include "platform/text/Conversions.h"
#include "reports/passes/OrderedWorkers.h"

namespace soca {
namespace {

// The largest number of classes that a reason names for one method.
constexpr std::size_t mostUsers = 8;

std::uint64_t keyOf(std::string_view className) { return std::hash<std::string_view>()(className); }

bool areSame(const std::vector<MethodUse>& left, const std::vector<MethodUse>& right) {
  return std::ranges::equal(left, right, [](const MethodUse& one, const MethodUse& other) {
    return one.method == other.method && one.text == other.text;
  });
}

// Keeps the list sorted, so that it does not depend on the order of the classes.
void addUse(MethodUse use, std::vector<MethodUse>& list) {
  const auto keyOf = [](const MethodUse& each) { return std::tie(each.method, each.text); };
  const auto place = std::ranges::upper_bound(list, keyOf(use), {}, keyOf);
  const auto inserted = list.insert(place, std::move(use));
  const auto isOther = [&](const MethodUse& each) { return each.method != inserted->method; };
  const auto first = std::ranges::find_if_not(list, isOther);
  const auto last = std::find_if(first, list.end(), isOther);
  if (static_cast<std::size_t>(last - first) > mostUsers) list.erase(last - 1);
}

void addUses(const std::string& user, const MethodNames& names, std::vector<MethodUse>& list) {
  for (const fl::ustring_view name : namesOf(names.used())) {
    const bool refers = (names.referred & methodSetOf(name)) != 0;
    addUse({fl::ustring(name),
            fmt::format("class '{}' {} it", user, refers ? "refers to" : "overrides")},
           list);
  }
}

// Those of the methods.
std::vector<MethodUse> usesOf(MethodSet methods, std::vector<MethodUse> uses) {
  std::erase_if(uses,
                [&](const MethodUse& use) { return (methodSetOf(use.method) & methods) == 0; });
  return uses;
}

// The values, their number before them, and the rest of the text.
template <class Value>
std::string pack(const std::vector<Value>& values, std::string_view rest) {
  static_assert(std::is_trivially_copyable_v<Value>);
  const std::size_t count = values.size();
  std::string text(sizeof count + count * sizeof(Value), '\0');
  std::memcpy(text.data(), &count, sizeof count);
  if (count > 0) std::memcpy(text.data() + sizeof count, values.data(), count * sizeof(Value));
  return text.append(rest);
}

template <class Value>
void unpack(std::string_view text, std::vector<Value>& values, std::string& rest) {
  std::size_t count = 0;
  std::memcpy(&count, text.data(), sizeof count);
  values.resize(count);
  rest = text.substr(sizeof count + count * sizeof(Value));
  if (count == 0) return;
  std::memcpy(static_cast<void*>(values.data()), text.data() + sizeof count, count * sizeof(Value));
}

}  // namespace

std::size_t RunPasses::add(std::string_view className, const PassFacts& facts,
                           std::string_view path) {
  Class& added = classes_.emplace_back();
  added.key = keyOf(className);
  added.nameStart = names_.size();
  added.nameSize = static_cast<std::uint32_t>(className.size());
  names_ += className;
  added.superStart = superClasses_.size();
  added.superCount = static_cast<std::uint32_t>(facts.superClasses.size());
  for (const std::string& name : facts.superClasses) superClasses_.push_back(keyOf(name));
  added.names = facts.names;
  added.takenMethods = facts.takenMethods;
  added.changedMethods = facts.changedMethods;
  added.hasAbstractFinding = facts.hasAbstractFinding;
  added.hasOldSuperClasses = facts.hasOldSuperClasses;
  added.isKept = facts.isKept;
  if (!facts.passes.empty()) added.passes = texts_.store(pack(store(facts.passes), path));
  return classes_.size() - 1;
}

void RunPasses::make(const std::function<bool()>& goesOn) {
  added_ = classes_.size();
  index();
  addClassesBetween();
  findDerived();
  findMembers();
  for (const auto& [number, member] : members_) countDefined(number, member.names.defined, 1);
  for (unsigned pass = 1; goesOn() && makePass(pass); ++pass) continue;
}

bool RunPasses::isReached(std::size_t number) const {
  const auto member = members_.find(number);
  return member != members_.end() && member->second.isReached && !classes_[number].isKept;
}

std::string RunPasses::nameOf(std::size_t number) const {
  return names_.substr(classes_[number].nameStart, classes_[number].nameSize);
}

bool RunPasses::restsOnUnsettled(std::size_t number) const {
  return std::ranges::any_of(ancestorsOf(number), [&](std::size_t each) {
    const auto member = members_.find(each);
    return member != members_.end() && member->second.isUnsettled;
  });
}

// --- the graph of the classes ---

void RunPasses::index() {
  byKey_.clear();
  byKey_.reserve(classes_.size());
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    byKey_.emplace_back(classes_[i].key, static_cast<std::uint32_t>(i));
  }
  std::ranges::sort(byKey_);
}

std::optional<std::size_t> RunPasses::find(std::uint64_t key) const {
  const auto place =
      std::ranges::lower_bound(byKey_, key, {}, [](const auto& e) { return e.first; });
  if (place == byKey_.end() || place->first != key) return std::nullopt;
  return place->second;
}

// A class of the run may derive from another one by way of classes that are not in the run.
void RunPasses::addClassesBetween() {
  std::unordered_set<std::uint64_t> known;
  for (const Class& each : classes_) known.insert(each.key);
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    const auto* supers = superClasses_.data() + classes_[i].superStart;
    if (std::all_of(supers, supers + classes_[i].superCount,
                    [&](std::uint64_t key) { return known.contains(key); })) {
      continue;
    }
    for (const std::string& name : findSuperClassesWithFile(nameOf(i))) {
      if (!known.insert(keyOf(name)).second) continue;
      PassFacts facts;
      facts.superClasses = findSuperClassesWithFile(name);
      add(name, facts, {});
    }
  }
  if (classes_.size() > added_) index();
}

RunPasses::Numbers RunPasses::superClassesOf(std::size_t number) const {
  Numbers numbers;
  const Class& each = classes_[number];
  for (std::size_t i = 0; i < each.superCount; ++i) {
    if (const auto found = find(superClasses_[each.superStart + i])) numbers.push_back(*found);
  }
  return numbers;
}

RunPasses::Numbers RunPasses::ancestorsOf(std::size_t number) const {
  Numbers found = {number};
  std::unordered_set<std::size_t> met = {number};
  for (std::size_t i = 0; i < found.size(); ++i) {
    for (const std::size_t each : superClassesOf(found[i])) {
      if (met.insert(each).second) found.push_back(each);
    }
  }
  found.erase(found.begin());
  return found;
}

void RunPasses::findDerived() {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> edges;
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    for (const std::size_t super : superClassesOf(i)) {
      edges.emplace_back(static_cast<std::uint32_t>(super), static_cast<std::uint32_t>(i));
    }
  }
  std::ranges::sort(edges);
  derivedStarts_.assign(classes_.size() + 1, 0);
  for (const auto& [super, derived] : edges) {
    ++derivedStarts_[super + 1];
    derived_.push_back(derived);
  }
  for (std::size_t i = 1; i < derivedStarts_.size(); ++i)
    derivedStarts_[i] += derivedStarts_[i - 1];
}

std::vector<bool> RunPasses::findCyclic() const {
  std::vector<bool> isCyclic(classes_.size(), true);
  std::vector<std::size_t> pending(classes_.size());
  Numbers free;
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    pending[i] = superClassesOf(i).size();
    if (pending[i] == 0) free.push_back(i);
  }
  for (std::size_t i = 0; i < free.size(); ++i) {
    isCyclic[free[i]] = false;
    for (std::uint32_t k = derivedStarts_[free[i]]; k < derivedStarts_[free[i] + 1]; ++k) {
      if (--pending[derived_[k]] == 0) free.push_back(derived_[k]);
    }
  }
  return isCyclic;
}

template <class Visit>
void RunPasses::visitDerived(std::size_t number, const Visit& visit) const {
  Numbers derived = {number};
  std::unordered_set<std::size_t> met = {number};
  for (std::size_t i = 0; i < derived.size(); ++i) {
    for (std::uint32_t k = derivedStarts_[derived[i]]; k < derivedStarts_[derived[i] + 1]; ++k) {
      if (!met.insert(derived_[k]).second) continue;
      derived.push_back(derived_[k]);
      visit(derived_[k]);
    }
  }
}

MethodNames RunPasses::namesOfNow(std::size_t number) const {
  const auto member = members_.find(number);
  return member == members_.end() ? classes_[number].names : member->second.names;
}

// --- the classes that take part ---

void RunPasses::findMembers() {
  Numbers open;
  const std::vector<bool> isCyclic = findCyclic();
  for (std::size_t i = 0; i < added_; ++i) {
    const Class& each = classes_[i];
    if (each.hasAbstractFinding) reachByProperties(i, open);
    if (each.isKept) continue;
    if (each.changedMethods != 0 || each.takenMethods != 0) open.push_back(i);
    if (!isCyclic[i] || !each.hasOldSuperClasses) continue;
    visitDerived(i, [&](std::size_t heir) { addHeir(i, heir, open); });
  }
  for (std::size_t i = 0; i < open.size(); ++i) reachByMethods(open[i], open);
}

void RunPasses::addMember(std::size_t number, bool isReached, Numbers& open) {
  const auto [entry, isNew] = members_.try_emplace(number);
  Member& member = entry->second;
  if (isNew) {
    const Class& added = classes_[number];
    member.names = added.names;
    if (added.passes.size > 0) unpack(texts_.take(added.passes), member.known, member.file);
  }
  if (!isReached || member.isReached) return;
  member.isReached = true;
  open.push_back(number);
}

void RunPasses::addHeir(std::size_t number, std::size_t heir, Numbers& open) {
  if (heir >= added_) return;
  addMember(number, false, open);
  addMember(heir, true, open);
  members_.at(number).heirs.push_back(heir);
}

void RunPasses::reachByMethods(std::size_t number, Numbers& open) {
  const Class& each = classes_[number];
  if (number >= added_ || each.isKept) return;
  const auto member = members_.find(number);
  const bool isReached = member != members_.end() && member->second.isReached;
  // A class that is reached may convert more than alone.
  const MethodSet changed = each.changedMethods | (isReached ? each.names.concerned() : 0);
  const MethodSet taken = each.takenMethods | (isReached ? each.names.declared : 0);
  if (changed == 0 && taken == 0) return;
  visitDerived(number, [&](std::size_t heir) {
    const MethodNames& names = classes_[heir].names;
    if ((names.concerned() & changed) != 0 && heir < added_) {
      addMember(number, false, open);
      addMember(heir, true, open);
    }
    if ((names.used() & taken) != 0) {
      addMember(number, true, open);
      if (heir < added_) addMember(heir, false, open);
    }
  });
}

void RunPasses::reachByProperties(std::size_t number, Numbers& open) {
  const std::string name = nameOf(number);
  for (const std::size_t super : ancestorsOf(number)) {
    if (super >= added_ || classes_[super].isKept) continue;
    if (mayFreeProperty(nameOf(super), name)) addHeir(super, number, open);
  }
}

void RunPasses::countDefined(std::size_t number, MethodSet defined, int change) {
  if (defined == 0) return;
  visitDerived(number, [&](std::size_t each) {
    const auto derived = members_.find(each);
    if (derived == members_.end()) return;
    Member& member = derived->second;
    for (std::size_t i = 0; i < mostMethods; ++i) {
      if ((defined >> i & 1) == 0) continue;
      const bool wasThere = member.definedAbove[i] > 0;
      member.definedAbove[i] += static_cast<std::uint32_t>(change);
      const bool isConcerned = (member.names.concerned() >> i & 1) != 0;
      if (wasThere != (member.definedAbove[i] > 0)) member.isTouched |= isConcerned;
    }
  });
}

RunPasses::Uses RunPasses::findUses() const {
  Uses found;
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    if (classes_[i].names.used() == 0) continue;
    const MethodNames names = namesOfNow(i);
    if (names.used() == 0) continue;
    for (const std::size_t each : ancestorsOf(i)) {
      if (members_.contains(each)) addUses(nameOf(i), names, found[each]);
    }
  }
  return found;
}

// --- a pass ---

RunPasses::Numbers RunPasses::findActive(unsigned pass, Uses& uses) const {
  Numbers active;
  for (const auto& [number, member] : members_) {
    if (member.isUnsettled || classes_[number].isKept) continue;
    if (pass == 1 || member.hasChanged || member.isTouched ||
        !areSame(member.looks.back().second, uses[number])) {
      active.push_back(number);
    }
  }
  std::ranges::sort(active);
  return active;
}

bool RunPasses::isKnown(const Member& member, unsigned pass) const {
  if (member.known.empty() || (pass > 1 && member.isTouched)) return false;
  if (!member.isReached) return true;
  const auto known = std::ranges::find(member.known, pass, &KnownPass::pass);
  // Beyond the last one, nothing changes.
  const KnownPass& same = known == member.known.end() ? member.known.back() : *known;
  return areSame(usesOf(same.foundMethods, member.looks.back().second),
                 usesOf(same.foundMethods, member.knownUses));
}

bool RunPasses::makePass(unsigned pass) {
  Uses uses = findUses();
  const Numbers active = findActive(pass, uses);
  Numbers unknown;
  for (const std::size_t each : active) {
    Member& member = members_.at(each);
    member.looks.emplace_back(pass, std::move(uses[each]));
    if (isKnown(member, pass)) continue;
    unknown.push_back(each);
  }
  for (auto& [number, member] : members_) member.hasChanged = member.isTouched = false;
  updateAgain(unknown);
  for (const std::size_t each : active) takePass(each, pass);
  return !active.empty();
}

void RunPasses::updateAgain(const Numbers& numbers) {
  auto next = numbers.begin();
  auto done = numbers.begin();
  OrderedWorkers<std::size_t, SingleUpdate>(
      jobs_,
      [&]() -> std::optional<std::size_t> {
        return next == numbers.end() ? std::nullopt : std::optional(*next++);
      },
      [&](const std::size_t& number) { return update_(nameOf(number), viewsOf(number)); },
      [&](SingleUpdate& update) {
        const std::size_t number = *done++;
        Member& member = members_.at(number);
        member.known = store(update.passes);
        member.knownUses = member.looks.back().second;
        if (update.outcome) member.file = update.outcome->update.file;
        if (member.isReached) take_(number, update);
        return true;
      })
      .run();
}

std::vector<RunPasses::KnownPass> RunPasses::store(const std::vector<PassRecord>& records) {
  std::vector<KnownPass> passes;
  passes.reserve(records.size());
  for (const PassRecord& each : records) {
    KnownPass& pass = passes.emplace_back();
    pass.pass = each.pass;
    pass.names = each.names;
    pass.foundMethods = each.foundMethods;
    pass.isUnsettled = each.isUnsettled;
    pass.isChanged = each.newText != nullptr;
    if (pass.isChanged) pass.text = texts_.store(*each.newText);
  }
  return passes;
}

void RunPasses::takePass(std::size_t number, unsigned pass) {
  Member& member = members_.at(number);
  const auto known = std::ranges::find(member.known, pass, &KnownPass::pass);
  if (known == member.known.end()) return;
  member.isUnsettled = known->isUnsettled;
  if (!known->isChanged) return;
  member.hasChanged = true;
  for (const std::size_t heir : member.heirs) members_.at(heir).isTouched = true;
  countDefined(number, member.names.defined & ~known->names.defined, -1);
  countDefined(number, known->names.defined & ~member.names.defined, 1);
  member.names = known->names;
  texts_.set(number, pass, known->text);
}

std::vector<PassView> RunPasses::viewsOf(std::size_t number) {
  std::vector<PassView> views;
  for (const auto& [pass, uses] : members_.at(number).looks) {
    views.push_back(viewOf(number, pass, uses));
  }
  return views;
}

PassView RunPasses::viewOf(std::size_t number, unsigned pass, const std::vector<MethodUse>& uses) {
  PassView view{pass, {}, uses};
  for (const std::size_t each : ancestorsOf(number)) {
    const auto member = members_.find(each);
    if (member == members_.end()) continue;
    if (auto text = texts_.get(each, pass - 1)) {
      view.texts.emplace_back(member->second.file, std::move(text));
    }
  }
  return view;
}

}  // namespace soca
