#include "fuzz/ConversionProperties.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <vector>

#include "bench/Dice.h"
#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "fuzz/KnownCauses.h"
#include "fuzz/Violation.h"
#include "model/PropertiesBlock.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/failure/Exception.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {
namespace {

using ca::astapi::Node;
using ca::astapi::PropertiesBlockNode;
using fl::i18n::to_string;

constexpr const char* missingDelimiter = "missing delimiter";

// A plan, or its failure.
struct Attempt {
  std::optional<PlannedClass> planned;
  std::string failure;
};

Attempt attempt(const std::function<PlannedClass()>& plan) {
  Attempt result;
  try {
    result.planned = plan();
    if (result.planned->missingDelimiter) result = {std::nullopt, missingDelimiter};
  } catch (const foundation::core::except::IMsgIDException& failure) {
    result.failure = failure.GetID();
  } catch (const std::out_of_range&) {
    result.failure = "std::out_of_range";
  }
  return result;
}

bool isSame(const PlannedEdit& left, const PlannedEdit& right) {
  return left.extent == right.extent && left.text == right.text &&
         left.delimiterFlags == right.delimiterFlags;
}

bool isSame(const PlannedAction& left, const PlannedAction& right) {
  const auto isSameEdit = [](const auto& one, const auto& other) { return isSame(one, other); };
  return left.family == right.family && left.isGroup == right.isGroup &&
         left.extent == right.extent && std::ranges::equal(left.edits, right.edits, isSameEdit);
}

// The id without the number of the declaration or block.
std::string plainId(const fl::ustring& id) {
  const std::string text = to_string(id);
  const std::size_t end = text.find_first_of("~0123456789", text.find(':'));
  return text.substr(0, end);
}

std::vector<std::string> plainIds(const PlannedClass& planned) {
  std::vector<std::string> ids;
  for (const fl::ustring& id : makeConversionIds(*planned.analysis, planned.conversions)) {
    ids.push_back(plainId(id));
  }
  return ids;
}

fl::ustring_view nameOf(const RuleConversion& conversion) {
  if (conversion.method != nullptr) return conversion.method->name->text.view();
  if (conversion.property != nullptr) return conversion.property->name->text.view();
  return {};
}

// Checks one subset of the conversions of a class.
class SubsetCheck {
 public:
  SubsetCheck(const PlannedClass& whole, const std::vector<bool>& made)
      : whole_(whole),
        made_(made),
        subset_(attempt([&] { return planConversions(whole, made); })) {}

  void run() {
    if (!subset_.planned) return;
    checkOwners();
    checkFindings();
    const PlannedClass& planned = *subset_.planned;
    if (planned.newText == nullptr) return;
    const auto updated = ca::analyzeText(fl::ustring(planned.text()));
    const auto reason = NewTextCheck(planned).findReasonToRefuse(*updated);
    if (reason) {
      require(findKnownCause(planned).has_value(), "{}, for no known cause", *reason);
      return;
    }
    checkProperties(*updated);
    checkMethods(*updated);
    checkBlocks(*updated);
    checkSuperClasses(*updated);
    checkRest();
  }

  const Attempt& attempted() const { return subset_; }

 private:
  template <class Predicate>
  bool anyMade(const Predicate& predicate) const {
    for (std::size_t i = 0; i < made_.size(); ++i) {
      if (made_[i] && predicate(whole_.conversions[i])) return true;
    }
    return false;
  }

  // Whether there are conversions with the companion of that name, and all of them are made.
  bool isFreed(fl::ustring_view name) const {
    bool isUsed = false;
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const auto* companion = whole_.conversions[i].companion;
      if (companion == nullptr || companion->name->text.view() != name) continue;
      if (!made_[i]) return false;
      isUsed = true;
    }
    return isUsed;
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

  bool isChanged(const DeclaredProperty& property) const {
    return anyMade([&](const RuleConversion& conversion) {
      if (conversion.kind == ConversionKindType::stringSet) {
        return conversion.property == property.node;
      }
      return conversion.block != nullptr &&
             std::ranges::find(conversion.block->members, property.node) !=
                 conversion.block->members.end();
    });
  }

  void checkProperties(const ca::AnalysisResult& updated) const {
    auto expected = declaredProperties(*whole_.analysis);
    std::erase_if(expected,
                  [&](const DeclaredProperty& property) { return isFreed(property.name); });
    const auto found = declaredProperties(updated);
    require(
        std::ranges::equal(found, expected, {}, &DeclaredProperty::name, &DeclaredProperty::name),
        "the properties are not those expected");
    for (std::size_t i = 0; i < found.size(); ++i) {
      require(isChanged(expected[i]) ||
                  textOf(updated, *found[i].node) == textOf(*whole_.analysis, *expected[i].node),
              "property '{}' changes", to_string(found[i].name));
    }
  }

  void checkMethods(const ca::AnalysisResult& updated) const {
    const auto found = declaredMethods(updated);
    auto next = found.begin();
    for (const DeclaredMethod& method : declaredMethods(*whole_.analysis)) {
      const auto place =
          std::ranges::find(whole_.conversions, method.node, &RuleConversion::method);
      const bool isMade = place != whole_.conversions.end() &&
                          made_[static_cast<std::size_t>(place - whole_.conversions.begin())];
      if (isMade && place->newName.empty()) continue;
      require(next != found.end(), "method '{}' is gone", to_string(method.name));
      if (isMade) {
        require(next->name == place->newName, "method '{}' keeps its name", to_string(method.name));
      } else {
        require(textOf(updated, *next->node) == textOf(*whole_.analysis, *method.node),
                "method '{}' changes", to_string(method.name));
      }
      ++next;
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

  // The next update finds the conversions that were not made.
  void checkRest() const {
    const fl::filesystem::OverlayScope overlay(to_string(whole_.result.fileName),
                                               fl::ustring(subset_.planned->text()));
    const PlannedClass next = planActions(whole_.result.className, whole_.mask, false).front();
    const auto found = plainIds(next);
    const auto ids = plainIds(whole_);
    for (std::size_t i = 0; i < made_.size(); ++i) {
      const bool isFound = std::ranges::find(found, ids[i]) != found.end();
      require(made_[i] || isFound || isKnown(whole_.conversions[i], next),
              "'{}' was not made and is not found again", ids[i]);
    }
  }

  static fl::ustring_view textOf(const ca::AnalysisResult& analysis, const Node& node) {
    return analysis.nodeTextView(node);
  }

  const PlannedClass& whole_;
  const std::vector<bool>& made_;
  Attempt subset_;
};

void checkAll(const PlannedClass& whole) {
  const std::vector<bool> made(whole.conversions.size(), true);
  SubsetCheck check(whole, made);
  const Attempt update = attempt(
      [&] { return std::move(planUpdate(whole.result.className, whole.mask, false).front()); });
  require(check.attempted().failure == update.failure, "all conversions fail with '{}', not '{}'",
          check.attempted().failure, update.failure);
  if (!update.planned) return;
  const PlannedClass& all = *check.attempted().planned;
  require(all.text() == update.planned->text(), "all conversions give another text");
  require(all.result.messages == update.planned->result.messages, "other messages");
  require(std::ranges::equal(all.actions, update.planned->actions,
                             [](const auto& one, const auto& other) { return isSame(one, other); }),
          "all conversions give other actions");
  require(all.owners == update.planned->owners, "all conversions give other owners");
  check.run();
}

void checkNone(const PlannedClass& whole) {
  const PlannedClass none =
      planConversions(whole, std::vector<bool>(whole.conversions.size(), false));
  require(none.actions.empty() && !none.result.updated && none.newText == nullptr,
          "something is done though nothing is made");
  require(none.conversions.size() == whole.conversions.size(), "other conversions are found");
}

void checkIds(const PlannedClass& whole) {
  auto ids = makeConversionIds(*whole.analysis, whole.conversions);
  std::ranges::sort(ids);
  require(std::ranges::adjacent_find(ids) == ids.end(), "two conversions have one id");
}

// All subsets of a few conversions; of more, each alone, all but each, and random ones.
std::vector<std::vector<bool>> subsetsOf(std::size_t count) {
  constexpr std::size_t few = 3;
  constexpr std::size_t mostAlone = 6;
  std::vector<std::vector<bool>> subsets;
  for (std::size_t bits = 0; count <= few && bits < std::size_t{1} << count; ++bits) {
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t i = 0; i < count; ++i) made[i] = (bits >> i & 1U) != 0;
  }
  if (count <= few) return subsets;
  bench::Dice dice(count);
  for (std::size_t i = 0; i < std::min(count, mostAlone); ++i) {
    subsets.emplace_back(count)[i] = true;
    subsets.emplace_back(count, true)[i] = false;
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t each = 0; each < count; ++each) made[each] = dice.once(2);
  }
  return subsets;
}

}  // namespace

void checkConversions(const fl::ustring& className) {
  std::optional<PlannedClass> whole;
  try {
    whole = std::move(planActions(className, allFamilies, false).front());
  } catch (const foundation::core::except::IMsgIDException&) {
    return;
  }
  checkIds(*whole);
  checkAll(*whole);
  checkNone(*whole);
  for (const std::vector<bool>& made : subsetsOf(whole->conversions.size())) {
    try {
      SubsetCheck(*whole, made).run();
    } catch (const Violation& violation) {
      std::string ids;
      const auto all = plainIds(*whole);
      for (std::size_t i = 0; i < made.size(); ++i) ids += made[i] ? all[i] + ' ' : "";
      throw Violation(fmt::format("with {}made: {}", ids, violation.what()));
    }
  }
}

}  // namespace soca::fuzz
