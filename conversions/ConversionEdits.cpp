#include "conversions/ConversionEdits.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "conversions/FileEdits.h"
#include "platform/failure/Exception.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using Indices = std::vector<std::size_t>;

// The largest number of plans for one class, so that the work grows linearly with the class.
constexpr std::size_t mostPlans = 64;

// The owner of an action that several conversions make together.
constexpr std::size_t severalOwners = std::numeric_limits<std::size_t>::max();

// Divides the edits of a plan, in which some of the conversions are made, among these.
class EditDivider {
 public:
  EditDivider(const PlannedClass& planned, const Indices& made)
      : planned_(planned), made_(made), isEntangled_(planned.conversions.size()) {
    for (std::size_t i = 0; i < planned.actions.size(); ++i) owners_.push_back(findOwner(i));
  }

  // Gives each conversion its edits. Returns those that share an edit or an action with another
  // one: alone they may make other edits.
  Indices divide(const FileEdits& fileEdits, std::vector<Conversion>& conversions) {
    for (const auto& [left, right] : fileEdits.shared) entangle(left, right);
    for (const FileEdit& edit : fileEdits.edits) {
      for (const std::size_t each : ownersOf(edit)) {
        if (!isEntangled_[each]) conversions[each].edits.push_back(edit);
      }
    }
    Indices rest;
    std::ranges::copy_if(made_, std::back_inserter(rest),
                         [&](std::size_t each) { return isEntangled_[each]; });
    return rest;
  }

 private:
  std::size_t findOwner(std::size_t action) {
    const auto owners = planned_.ownersOf(action);
    if (owners.size() == 1) return owners.front().conversion;
    for (const ActionOwner& owner : owners) isEntangled_[owner.conversion] = true;
    return severalOwners;
  }

  Indices ownersOf(const FileEdit& edit) const {
    if (edit.action == everyAction) return made_;
    if (owners_[edit.action] == severalOwners) return {};
    return {owners_[edit.action]};
  }

  // For two actions that share an edit.
  void entangle(std::size_t left, std::size_t right) {
    if (right == everyAction && made_.size() > 1) {
      for (const std::size_t each : made_) isEntangled_[each] = true;
    }
    if (right == everyAction || owners_[left] == owners_[right]) return;
    for (const std::size_t action : {left, right}) {
      if (owners_[action] != severalOwners) isEntangled_[owners_[action]] = true;
    }
  }

  const PlannedClass& planned_;
  const Indices& made_;
  // The conversion that makes each action.
  std::vector<std::size_t> owners_;
  std::vector<bool> isEntangled_;
};

// Makes all conversions at once. Those that are entangled are divided into two groups, and each of
// these is made at once, and so on. Every second one goes into the other group, because neighbours
// are entangled most often: properties with companions in one block, and blocks that are joined.
class EditFinder {
 public:
  EditFinder(const PlannedClass& planned, fl::EncodingType encoding,
             std::vector<Conversion>& conversions)
      : planned_(planned), encoding_(encoding), conversions_(conversions) {}

  void find() {
    std::vector<bool> isMade(planned_.conversions.size());
    for (const ActionOwner& owner : planned_.owners) isMade[owner.conversion] = true;
    Indices all;
    for (std::size_t i = 0; i < isMade.size(); ++i) {
      if (isMade[i]) all.push_back(i);
    }
    divide(planned_, all);
    for (std::size_t plans = 0; !groups_.empty() && plans < mostPlans; ++plans) {
      const Indices group = std::move(groups_.front());
      groups_.pop_front();
      if (const auto plan = planGroup(group)) {
        divide(*plan, group);
      } else {
        split(group);
      }
    }
  }

 private:
  void divide(const PlannedClass& plan, const Indices& made) {
    Indices rest = EditDivider(plan, made).divide(findFileEdits(plan, encoding_), conversions_);
    if (rest.size() == 1) {
      groups_.push_back(std::move(rest));
    } else {
      split(rest);
    }
  }

  // A group of one has nothing to be entangled with, so this drops it only if it cannot be made.
  void split(const Indices& group) {
    if (group.size() < 2) return;
    Indices halves[2];
    for (std::size_t i = 0; i < group.size(); ++i) halves[i % 2].push_back(group[i]);
    for (Indices& half : halves) groups_.push_back(std::move(half));
  }

  // Empty if the group cannot be made.
  std::optional<PlannedClass> planGroup(const Indices& group) const {
    std::vector<bool> made(planned_.conversions.size());
    for (const std::size_t each : group) made[each] = true;
    try {
      PlannedClass plan =
          planConversions(planned_, made, {.keepLines = true, .listFaults = planned_.listsFaults});
      if (plan.missingDelimiter || !plan.faults.empty()) return std::nullopt;
      return plan;
    } catch (const foundation::core::except::IMsgIDException&) {
      // Edits of these conversions overlap.
    } catch (const std::out_of_range&) {
      // One begins after the end of its line.
    }
    return std::nullopt;
  }

  const PlannedClass& planned_;
  fl::EncodingType encoding_;
  std::vector<Conversion>& conversions_;
  std::deque<Indices> groups_;
};

}  // namespace

void findEditsOfEach(const PlannedClass& planned, fl::EncodingType encoding,
                     std::vector<Conversion>& conversions) {
  EditFinder(planned, encoding, conversions).find();
}

}  // namespace soca
