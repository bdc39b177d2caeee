#include "fuzz/ConversionProperties.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <vector>

#include "bench/Dice.h"
#include "conversions/Ancestry.h"
#include "conversions/Checks.h"
#include "conversions/ClassMembers.h"
#include "conversions/ConversionEdits.h"
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
  const std::size_t name = text.find(':') + 1;
  const bool isNumber = name < text.size() && text[name] >= '0' && text[name] <= '9';
  return text.substr(0, isNumber ? name : text.find('~'));
}

std::vector<std::string> plainIds(const PlannedClass& planned) {
  std::vector<std::string> ids;
  for (const fl::ustring& id : makeConversionIds(*planned.analysis, planned.conversions)) {
    ids.push_back(plainId(id));
  }
  return ids;
}

// For each conversion its index in the next plan: that of the same id, or else of the first one
// with the same id but for its number, because numbers change when declarations are deleted.
std::vector<std::optional<std::size_t>> findAgain(const PlannedClass& planned,
                                                  const PlannedClass& next) {
  const auto ids = makeConversionIds(*planned.analysis, planned.conversions);
  const auto found = makeConversionIds(*next.analysis, next.conversions);
  std::vector<std::optional<std::size_t>> indices;
  for (const fl::ustring& id : ids) {
    auto place = std::ranges::find(found, id);
    if (place == found.end()) place = std::ranges::find(found, plainId(id), plainId);
    std::optional<std::size_t>& index = indices.emplace_back();
    if (place != found.end()) index = static_cast<std::size_t>(place - found.begin());
  }
  return indices;
}

fl::ustring_view nameOf(const RuleConversion& conversion) {
  if (conversion.method != nullptr) return conversion.method->name->text.view();
  if (conversion.property != nullptr) return conversion.property->name->text.view();
  return {};
}

// The members that a text declares: first the properties, then the methods, each with its text from
// its first to its last token.
struct MemberTexts {
  explicit MemberTexts(const ca::AnalysisResult& analysis) {
    const auto add = [&](const auto& each) {
      texts.emplace_back(analysis.nodeTextView(*each.node));
    };
    std::ranges::for_each(declaredProperties(analysis), add);
    propertyCount = texts.size();
    std::ranges::for_each(declaredMethods(analysis), add);
  }

  friend bool operator==(const MemberTexts&, const MemberTexts&) = default;

  std::vector<fl::ustring> texts;
  std::size_t propertyCount = 0;
};

// Checks one subset of the conversions of a class.
class SubsetCheck {
 public:
  // `all` has the members after all conversions; null if these cannot be made, or not without
  // faults.
  SubsetCheck(const PlannedClass& whole, const std::vector<bool>& made, const MemberTexts* all)
      : whole_(whole),
        made_(made),
        all_(all),
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
      require(all_ == nullptr || updated->diagnostics().empty(), "{}, but not with all", *reason);
      require(findKnownCause(planned).has_value(), "{}, for no known cause", *reason);
      return;
    }
    checkProperties(*updated);
    checkMethods(*updated);
    checkBlocks(*updated);
    checkSuperClasses(*updated);
    checkRest();
  }

  // The members of the new text; empty if there is none, or if it has faults.
  std::optional<MemberTexts> members() const {
    if (!subset_.planned) return std::nullopt;
    const auto updated = ca::analyzeText(fl::ustring(subset_.planned->text()));
    if (NewTextCheck(*subset_.planned).findReasonToRefuse(*updated)) return std::nullopt;
    return MemberTexts(*updated);
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
    const Attempt attempted = attempt([&] {
      return std::move(planActions(whole_.result.className, whole_.mask, false).front());
    });
    if (!attempted.planned) {
      // In a cycle of superclasses, the mixin may have been all that made it a System object.
      require(Ancestry(to_string(whole_.result.className)).isCyclic(), "the next update fails: {}",
              attempted.failure);
      return;
    }
    const PlannedClass& next = *attempted.planned;
    const auto again = findAgain(whole_, next);
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
    const auto members = SubsetCheck(next, rest, nullptr).members();
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
  Attempt subset_;
};

// Returns the members after all conversions.
std::optional<MemberTexts> checkAll(const PlannedClass& whole) {
  const std::vector<bool> made(whole.conversions.size(), true);
  SubsetCheck check(whole, made, nullptr);
  const Attempt update = attempt(
      [&] { return std::move(planUpdate(whole.result.className, whole.mask, false).front()); });
  require(check.attempted().failure == update.failure, "all conversions fail with '{}', not '{}'",
          check.attempted().failure, update.failure);
  if (!update.planned) return std::nullopt;
  const PlannedClass& all = *check.attempted().planned;
  require(all.text() == update.planned->text(), "all conversions give another text");
  require(all.result.messages == update.planned->result.messages, "other messages");
  require(std::ranges::equal(all.actions, update.planned->actions,
                             [](const auto& one, const auto& other) { return isSame(one, other); }),
          "all conversions give other actions");
  require(all.owners == update.planned->owners, "all conversions give other owners");
  check.run();
  return check.members();
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
  constexpr std::size_t few = 4;
  constexpr std::size_t mostAlone = 6;
  constexpr std::size_t randomOnes = 20;
  std::vector<std::vector<bool>> subsets;
  for (std::size_t bits = 0; count <= few && bits < std::size_t{1} << count; ++bits) {
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t i = 0; i < count; ++i) made[i] = (bits >> i & 1U) != 0;
  }
  if (count <= few) return subsets;
  for (std::size_t i = 0; i < std::min(count, mostAlone); ++i) {
    subsets.emplace_back(count)[i] = true;
    subsets.emplace_back(count, true)[i] = false;
  }
  bench::Dice dice(count);
  for (std::size_t i = 0; i < randomOnes; ++i) {
    std::vector<bool>& made = subsets.emplace_back(count);
    for (std::size_t each = 0; each < count; ++each) made[each] = dice.once(2);
  }
  return subsets;
}

std::string applyAll(const std::vector<FileEdit>& edits, const std::string& text) {
  std::string newText;
  std::size_t position = 0;
  for (const FileEdit& edit : edits) {
    newText += text.substr(position, edit.offset - position) + edit.text;
    position = edit.offset + edit.length;
  }
  return newText + text.substr(position);
}

// The edits of each conversion give the text with only this one.
void checkEditsOfEach(const PlannedClass& whole) {
  const Attempt update = attempt([&] {
    return std::move(
        planUpdate(whole.result.className, whole.mask, false, {.keepLines = true}).front());
  });
  if (!update.planned || update.planned->newText == nullptr) return;
  auto conversions = describeConversions(*update.planned);
  findEditsOfEach(*update.planned, fl::EncodingType::utf8, conversions);
  for (std::size_t i = 0; i < conversions.size(); ++i) {
    std::vector<bool> made(conversions.size());
    made[i] = true;
    const Attempt alone = attempt([&] { return planConversions(whole, made); });
    const std::string expected = to_string(alone.planned ? alone.planned->text() : *whole.oldText);
    const std::string edited = applyAll(conversions[i].edits, to_string(*whole.oldText));
    require(edited == expected, "the edits of '{}' give another text", conversions[i].id);
  }
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
  const auto all = checkAll(*whole);
  checkNone(*whole);
  checkEditsOfEach(*whole);
  for (const std::vector<bool>& made : subsetsOf(whole->conversions.size())) {
    try {
      SubsetCheck(*whole, made, all ? &*all : nullptr).run();
    } catch (const Violation& violation) {
      std::string ids;
      const auto plain = plainIds(*whole);
      for (std::size_t i = 0; i < made.size(); ++i) ids += made[i] ? plain[i] + ' ' : "";
      throw Violation(fmt::format("with {}made: {}", ids, violation.what()));
    }
  }
}

}  // namespace soca::fuzz
