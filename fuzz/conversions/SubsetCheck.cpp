#include "fuzz/conversions/SubsetCheck.h"

#include <algorithm>

#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "conversions/superclasses/Ancestry.h"
#include "fuzz/AnalysisProperties.h"
#include "fuzz/Violation.h"
#include "fuzz/conversions/PlanAttempt.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {
namespace {

using ca::astapi::Node;
using ca::astapi::PropertiesBlockNode;
using fl::i18n::to_string;

// For each conversion that is not made its index in the next plan: that of the same id, or else of
// one with the same id but for its number, because numbers change when declarations are deleted.
std::vector<std::optional<std::size_t>> findAgain(const PlannedClass& planned,
                                                  const std::vector<bool>& made,
                                                  const PlannedClass& next) {
  const auto ids = makeConversionIds(*planned.analysis, planned.conversions);
  const auto found = makeConversionIds(*next.analysis, next.conversions);
  const auto plain = plainIds(planned);
  const auto plainFound = plainIds(next);
  std::vector<std::optional<std::size_t>> indices(ids.size());
  std::vector<bool> isTaken(found.size());
  const auto find = [&](const auto& isSought) -> std::optional<std::size_t> {
    for (std::size_t k = 0; k < found.size(); ++k) {
      if (isSought(k)) return k;
    }
    return std::nullopt;
  };
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (made[i]) continue;
    const auto isSame = [&](std::size_t k) { return plainFound[k] == plain[i]; };
    auto place = find([&](std::size_t k) { return found[k] == ids[i]; });
    if (!place) place = find([&](std::size_t k) { return isSame(k) && !isTaken[k]; });
    if (!place) place = find(isSame);
    if (place) isTaken[*place] = true;
    indices[i] = place;
  }
  return indices;
}

fl::ustring_view nameOf(const RuleConversion& conversion) {
  if (conversion.method != nullptr) return conversion.method->name->text.view();
  if (conversion.property != nullptr) return conversion.property->name->text.view();
  return {};
}

// Checks one subset of the conversions of a class.
class SubsetCheck {
 public:
  SubsetCheck(const PlannedClass& whole, const std::vector<bool>& made, const MemberTexts* all)
      : whole_(whole),
        made_(made),
        all_(all),
        subset_(attemptPlan([&] { return planConversions(whole, made); })) {}

  void run() {
    if (!subset_.planned) return;
    checkOwners();
    checkFindings();
    const PlannedClass& planned = *subset_.planned;
    if (planned.newText == nullptr) return;
    const auto updated = ca::analyzeText(fl::ustring(planned.text()));
    checkSkipping(*updated, planned.analysis->knownFunctions());
    const auto reason = NewTextCheck(planned).findReasonToRefuse(*updated);
    if (reason) {
      require(all_ == nullptr || updated->diagnostics().empty(), "{}, but not with all", *reason);
      return;
    }
    checkProperties(*updated);
    checkMethods(*updated);
    checkBlocks(*updated);
    checkSuperClasses(*updated);
    checkRest();
  }

 private:
  template <class Predicate>
  bool anyMade(const Predicate& predicate) const {
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i] && predicate(whole_.conversions[i])) return true;
    }
    return false;
  }

  bool isFreedByAll(fl::ustring_view name) const {
    return std::ranges::any_of(whole_.conversions, [&](const RuleConversion& each) {
      return each.companion != nullptr && each.companion->name->text.view() == name;
    });
  }

  // Whether there are conversions with the companion of that name, and all of them are made.
  bool isFreed(fl::ustring_view name) const {
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const auto* companion = whole_.conversions[i].companion;
      if (companion == nullptr || companion->name->text.view() != name) continue;
      if (!made_[i]) return false;
    }
    return isFreedByAll(name);
  }

  void checkOwners() const {
    const PlannedClass& planned = *subset_.planned;
    require(std::ranges::is_sorted(planned.owners, {}, &ActionOwner::action), "unsorted owners");
    for (const ActionOwner& owner : planned.owners) {
      require(owner.action < planned.actions.size(), "an owner of no action");
      require(made_.at(owner.conversion), "an action of a conversion that is not made");
    }
  }

  void checkFindings() const {
    auto expected = whole_.findings;
    std::erase_if(expected, [&](const RuleFinding& finding) {
      return finding.conversion != noConversion && !made_[finding.conversion];
    });
    require(std::ranges::equal(subset_.planned->findings, expected, {}, &RuleFinding::message,
                               &RuleFinding::message),
            "the findings differ");
  }

  // --- the members of the new text ---

  static bool isAbout(const RuleConversion& conversion, const DeclaredProperty& property) {
    if (conversion.kind == ConversionKindType::stringSet) {
      return conversion.property == property.node;
    }
    return conversion.block != nullptr &&
           std::ranges::find(conversion.block->members, property.node) !=
               conversion.block->members.end();
  }

  // The number of conversions that change the property, and of those that are made.
  std::pair<std::size_t, std::size_t> countConversions(const DeclaredProperty& property) const {
    std::pair<std::size_t, std::size_t> counts;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (!isAbout(whole_.conversions[i], property)) continue;
      ++counts.first;
      if (made_[i]) ++counts.second;
    }
    return counts;
  }

  // A declaration without conversions that are made keeps its text; with all of its conversions it
  // has the text that it has in the whole.
  void checkProperties(const ca::AnalysisResult& updated) const {
    const auto found = declaredProperties(updated);
    auto next = found.begin();
    std::size_t inAll = 0;
    for (const DeclaredProperty& property : declaredProperties(*whole_.analysis)) {
      const bool staysInAll = !isFreedByAll(property.name);
      const std::size_t number = staysInAll ? inAll++ : 0;
      if (isFreed(property.name)) continue;
      const std::string name = to_string(property.name);
      require(next != found.end() && next->name == property.name, "property '{}' is gone", name);
      const fl::ustring_view text = textOf(updated, *next++->node);
      const auto [count, madeCount] = countConversions(property);
      require(madeCount > 0 || text == textOf(*whole_.analysis, *property.node),
              "property '{}' changes", name);
      if (all_ == nullptr || madeCount != count || !staysInAll) continue;
      require(text == all_->texts.at(number), "property '{}' is not that of the whole", name);
    }
    require(next == found.end(), "there are more properties than before");
  }

  // The same for the methods, each of which has at most one conversion.
  void checkMethods(const ca::AnalysisResult& updated) const {
    const auto found = declaredMethods(updated);
    auto next = found.begin();
    std::size_t inAll = 0;
    for (const DeclaredMethod& method : declaredMethods(*whole_.analysis)) {
      const auto place =
          std::ranges::find(whole_.conversions, method.node, &RuleConversion::method);
      const bool isKnown = place != whole_.conversions.end();
      const bool isMade =
          isKnown && made_[static_cast<std::size_t>(place - whole_.conversions.begin())];
      const bool isDeletion = isKnown && place->newName.empty();
      const std::size_t number = isDeletion ? 0 : inAll++;
      if (isMade && isDeletion) continue;
      const std::string name = to_string(method.name);
      require(next != found.end(), "method '{}' is gone", name);
      require(!isMade || next->name == place->newName, "method '{}' keeps its name", name);
      const fl::ustring_view text = textOf(updated, *next++->node);
      require(isMade || text == textOf(*whole_.analysis, *method.node), "method '{}' changes",
              name);
      if (all_ == nullptr || !isMade) continue;
      require(text == all_->texts.at(all_->propertyCount + number),
              "method '{}' is not that of the whole", name);
    }
    require(next == found.end(), "there are more methods than before");
  }

  // Only the empty blocks whose conversions are not made are in the new text.
  void checkBlocks(const ca::AnalysisResult& updated) const {
    std::ptrdiff_t emptyBlocks = 0;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const RuleConversion& conversion = whole_.conversions[i];
      if (made_[i] || conversion.block == nullptr) continue;
      if (conversion.kind == ConversionKindType::emptyBlock) ++emptyBlocks;
    }
    const auto blocks = updated.getClassdef()->getPropertiesBlocks();
    const auto found = std::ranges::count_if(
        blocks, [](const PropertiesBlockNode* block) { return block->members.empty(); });
    require(found == emptyBlocks, "there are {} blocks without properties, not {}", found,
            emptyBlocks);
  }

  void checkSuperClasses(const ca::AnalysisResult& updated) const {
    if (anyMade(
            [](const RuleConversion& each) { return each.kind == ConversionKindType::mixins; })) {
      return;
    }
    const auto namesOf = [](const ca::AnalysisResult& analysis) {
      std::vector<fl::ustring> names;
      for (const auto* name : analysis.getClassdef()->superClasses) {
        names.push_back(name->text.getText());
      }
      return names;
    };
    require(namesOf(updated) == namesOf(*whole_.analysis), "the superclasses change");
  }

  // Whether the next update finds an obstacle to the conversion, or a conversion of its companion.
  // Deleted text can have this effect: for example, a comment that hid the use of a companion.
  static bool isKnown(const RuleConversion& conversion, const PlannedClass& next) {
    const fl::ustring_view name = nameOf(conversion);
    const auto isObstacle = [&](const RuleFinding& finding) {
      return finding.kind == conversion.kind && finding.memberName->text.view() == name;
    };
    const auto isFreed = [&](const RuleConversion& other) {
      return other.companion != nullptr && other.companion->name->text.view() == name;
    };
    return std::ranges::any_of(next.findings, isObstacle) ||
           std::ranges::any_of(next.conversions, isFreed);
  }

  // Whether a companion stays although a conversion with it is made. The next update finds that
  // conversion again.
  bool sharesCompanion() const {
    return anyMade([&](const RuleConversion& each) {
      return each.companion != nullptr && !isFreed(each.companion->name->text.view());
    });
  }

  // The number of places that conversions of that kind and name can have.
  std::ptrdiff_t countPlaces(const RuleConversion& conversion) const {
    const auto isSameName = [&](const auto& each) { return each.name == nameOf(conversion); };
    if (conversion.method != nullptr) {
      return std::ranges::count_if(declaredMethods(*whole_.analysis), isSameName);
    }
    if (conversion.property != nullptr) {
      return std::ranges::count_if(declaredProperties(*whole_.analysis), isSameName);
    }
    return std::ranges::count(whole_.conversions, conversion.kind, &RuleConversion::kind);
  }

  // The next update finds a conversion that was made only if its companion stays for another
  // property, or elsewhere: for another declaration of the name.
  void checkMade(const PlannedClass& next) const {
    const auto ids = plainIds(whole_);
    const auto found = plainIds(next);
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const auto* companion = whole_.conversions[i].companion;
      if (!made_[i] || (companion != nullptr && !isFreed(companion->name->text.view()))) continue;
      std::ptrdiff_t others = countPlaces(whole_.conversions[i]);
      for (std::size_t each = 0; each < made_.size(); ++each) {
        if (made_[each] && ids[each] == ids[i]) --others;
      }
      const auto again = std::ranges::count(found, ids[i]);
      require(again == 0 || again <= others, "'{}' is made and found again", ids[i]);
    }
  }

  // The next update finds the conversions that were not made. With these the class has the members
  // of the whole.
  void checkRest() const {
    const fl::filesystem::OverlayScope overlay(to_string(whole_.result.fileName),
                                               fl::ustring(subset_.planned->text()));
    const PlanAttempt attempted = attemptPlan([&] { return planLike(whole_); });
    if (!attempted.planned) {
      // In a cycle of superclasses, the mixin may have been all that made it a System object.
      require(Ancestry(to_string(whole_.result.className)).isCyclic(), "the next update fails: {}",
              attempted.failure);
      return;
    }
    const PlannedClass& next = *attempted.planned;
    const auto again = findAgain(whole_, made_, next);
    checkMade(next);
    std::vector<bool> rest(next.conversions.size());
    bool isWhole = all_ != nullptr && !sharesCompanion();
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i]) continue;
      require(again[i].has_value() || isKnown(whole_.conversions[i], next),
              "'{}' was not made and is not found again", plainIds(whole_)[i]);
      isWhole = isWhole && again[i].has_value();
      if (again[i]) rest[*again[i]] = true;
    }
    if (!isWhole) return;
    const auto members = findMembers(attemptPlan([&] { return planConversions(next, rest); }));
    require(members.has_value(), "the rest cannot be made afterwards");
    const auto [member, inAll] = std::ranges::mismatch(members->texts, all_->texts);
    require(*members == *all_, "the rest gives other members than the whole: '{}', not '{}'",
            member == members->texts.end() ? "" : to_string(*member),
            inAll == all_->texts.end() ? "" : to_string(*inAll));
  }

  static fl::ustring_view textOf(const ca::AnalysisResult& analysis, const Node& node) {
    return analysis.nodeTextView(node);
  }

  const PlannedClass& whole_;
  const std::vector<bool>& made_;
  const MemberTexts* all_;
  PlanAttempt subset_;
};
}  // namespace

MemberTexts::MemberTexts(const ca::AnalysisResult& analysis) {
  const auto add = [&](const auto& each) { texts.emplace_back(analysis.nodeTextView(*each.node)); };
  std::ranges::for_each(declaredProperties(analysis), add);
  propertyCount = texts.size();
  std::ranges::for_each(declaredMethods(analysis), add);
}

std::optional<MemberTexts> findMembers(const PlanAttempt& attempted) {
  if (!attempted.planned) return std::nullopt;
  const auto updated = ca::analyzeText(fl::ustring(attempted.planned->text()));
  if (NewTextCheck(*attempted.planned).findReasonToRefuse(*updated)) return std::nullopt;
  return MemberTexts(*updated);
}

void checkSubset(const PlannedClass& whole, const std::vector<bool>& made, const MemberTexts* all) {
  SubsetCheck(whole, made, all).run();
}

}  // namespace soca::fuzz
