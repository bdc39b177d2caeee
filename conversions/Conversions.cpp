#include "conversions/Conversions.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "conversions/ClassMembers.h"
#include "model/AnalyzerPositions.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

using fl::i18n::to_string;

constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
// The largest number of properties that a message names.
constexpr std::size_t mostNames = 8;

// Disjoint sets of numbers; the leader of a set identifies it.
class Groups {
 public:
  explicit Groups(std::size_t count) : leaders_(count) {
    std::iota(leaders_.begin(), leaders_.end(), std::size_t{0});
  }

  std::size_t leaderOf(std::size_t number) {
    while (leaders_[number] != number) number = leaders_[number] = leaders_[leaders_[number]];
    return number;
  }
  void join(std::size_t left, std::size_t right) { leaders_[leaderOf(left)] = leaderOf(right); }

 private:
  std::vector<std::size_t> leaders_;
};

bool covers(const Extent& outer, const Extent& inner) {
  return outer.start <= inner.start && inner.end <= outer.end;
}

// A property, method or block, and its place in the file.
struct PlacedMember {
  fl::ustring_view name;
  Extent extent;
  Extent nameExtent;
};

// The members in `declared`, each of which has a name and a node.
template <class Declared>
std::vector<PlacedMember> placeMembers(const ca::AnalysisResult& analysis,
                                       const std::vector<Declared>& declared) {
  std::vector<PlacedMember> members;
  members.reserve(declared.size());
  for (const Declared& each : declared) {
    members.push_back({each.name, makeExtentOfNode(analysis, *each.node),
                       makeExtentOfNode(analysis, *each.node->name)});
  }
  return members;
}

std::vector<PlacedMember> placeBlocks(const ca::AnalysisResult& analysis) {
  std::vector<PlacedMember> blocks;
  for (const auto* block : analysis.getClassdef()->getPropertiesBlocks()) {
    blocks.push_back({.extent = makeExtentOfNode(analysis, *block)});
  }
  return blocks;
}

// Calls `visit` with the index of each member that touches the extent. The members are in order.
template <class Visit>
void visitMembers(const std::vector<PlacedMember>& members, const Extent& extent,
                  const Visit& visit) {
  auto member = std::ranges::lower_bound(members, extent.start, {},
                                         [](const PlacedMember& each) { return each.extent.end; });
  for (; member != members.end() && member->extent.start <= extent.end; ++member) {
    visit(static_cast<std::size_t>(member - members.begin()));
  }
}

class ConversionFinder {
 public:
  ConversionFinder(const PlannedClass& planned, const FileEdits& fileEdits)
      : planned_(planned),
        fileEdits_(fileEdits),
        properties_(placeMembers(*planned.analysis, declaredProperties(*planned.analysis))),
        methods_(placeMembers(*planned.analysis, declaredMethods(*planned.analysis))),
        blocks_(placeBlocks(*planned.analysis)),
        groups_(planned.actions.size() + blocks_.size() + methods_.size()),
        actionsOfProperties_(properties_.size(), none),
        isDeleted_(properties_.size()) {}

  std::vector<Conversion> find() {
    for (const auto& [left, right] : fileEdits_.shared) groups_.join(left, right);
    for (std::size_t i = 0; i < planned_.actions.size(); ++i) {
      const PlannedAction& action = planned_.actions[i];
      if (action.family == RuleFamilyType::attributes) joinBlocks(action, i);
      if (action.family == RuleFamilyType::impl) joinMethod(action, i);
    }
    joinJoinedBlocks();
    joinCompanions();
    for (std::size_t i = 0; i < fileEdits_.edits.size(); ++i) addEdit(i);
    for (std::size_t i = 0; i < properties_.size(); ++i) addProperty(i);
    for (auto& [leader, number] : numbers_) describe(conversions_[number]);
    return std::move(conversions_);
  }

 private:
  void joinBlocks(const PlannedAction& action, std::size_t number) {
    visitMembers(blocks_, action.extent,
                 [&](std::size_t block) { groups_.join(number, planned_.actions.size() + block); });
    for (const PlannedEdit& edit : action.edits) {
      if (edit.text.empty() && edit.extent.start < edit.extent.end) {
        deletionsByStart_.emplace(edit.extent.start, edit.extent.end);
        deletionsByEnd_.emplace(edit.extent.end, edit.extent.start);
      }
      visitMembers(properties_, edit.extent, [&](std::size_t property) {
        if (actionsOfProperties_[property] == none) actionsOfProperties_[property] = number;
        const bool isCovered = covers(edit.extent, properties_[property].extent);
        if (isCovered && edit.text.empty()) isDeleted_[property] = true;
      });
    }
  }

  void joinMethod(const PlannedAction& action, std::size_t number) {
    visitMembers(methods_, {action.extent.start, action.extent.start}, [&](std::size_t method) {
      groups_.join(number, planned_.actions.size() + blocks_.size() + method);
    });
  }

  // If the end of a block and the beginning of a later one are deleted, the two blocks become one.
  void joinJoinedBlocks() {
    bool continues = false;
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
      const std::size_t number = planned_.actions.size() + i;
      if (continues) groups_.join(number - 1, number);
      const Extent& extent = blocks_[i].extent;
      const auto atEnd = deletionsByEnd_.find(extent.end);
      const auto atStart = deletionsByStart_.find(extent.start);
      if (atEnd != deletionsByEnd_.end() && extent.start < atEnd->second) {
        continues = true;
      } else if (atStart != deletionsByStart_.end() && atStart->second < extent.end) {
        continues = false;
      }
    }
  }

  // A property takes over the set of its companion, so their edits belong together.
  void joinCompanions() {
    std::unordered_map<fl::ustring_view, std::size_t> deleted;
    for (std::size_t i = 0; i < properties_.size(); ++i) {
      if (isDeleted_[i]) deleted.emplace(properties_[i].name, i);
    }
    const auto description = sotarn::describeClass(to_string(planned_.result.className));
    if (deleted.empty() || description == nullptr) return;
    for (std::size_t i = 0; i < properties_.size(); ++i) {
      if (actionsOfProperties_[i] == none) continue;
      const auto known = description->properties.find(to_string(properties_[i].name));
      if (known == description->properties.end() || !known->second.constrainedSet) continue;
      const auto companion = deleted.find(known->second.constrainedSet->setPropertyName);
      if (companion == deleted.end()) continue;
      groups_.join(actionsOfProperties_[i], actionsOfProperties_[companion->second]);
    }
  }

  void addEdit(std::size_t number) {
    const FileEdit& edit = fileEdits_.edits[number];
    const auto [known, isNew] =
        numbers_.emplace(groups_.leaderOf(edit.action), conversions_.size());
    if (isNew) {
      Conversion& conversion = conversions_.emplace_back();
      conversion.family = planned_.actions[edit.action].family;
      conversion.place = edit.extent;
      actions_.push_back(edit.action);
      names_.emplace_back();
    }
    conversions_[known->second].edits.push_back(number);
  }

  void addProperty(std::size_t property) {
    if (actionsOfProperties_[property] == none || isDeleted_[property]) return;
    const auto conversion = numbers_.find(groups_.leaderOf(actionsOfProperties_[property]));
    if (conversion != numbers_.end()) names_[conversion->second].push_back(property);
  }

  void describe(Conversion& conversion) {
    const auto number = static_cast<std::size_t>(&conversion - conversions_.data());
    const PlannedAction& action = planned_.actions[actions_[number]];
    if (conversion.family == RuleFamilyType::attributes) {
      describeProperties(names_[number], conversion);
    } else if (conversion.family == RuleFamilyType::impl) {
      describeMethod(action, conversion);
    } else {
      conversion.message = ruleFamily(conversion.family).name;
      conversion.arguments = {to_string(planned_.result.className)};
      conversion.place = action.extent;
    }
  }

  void describeProperties(const std::vector<std::size_t>& names, Conversion& conversion) const {
    conversion.message = names.empty() ? "block" : names.size() == 1 ? "property" : "properties";
    if (names.empty()) return;
    conversion.member = to_string(properties_[names.front()].name);
    conversion.place = properties_[names.front()].nameExtent;
    if (names.size() == 1) {
      conversion.arguments = {conversion.member};
      return;
    }
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), mostNames); ++i) {
      list += fmt::format("{}'{}'", i == 0 ? "" : ", ", to_string(properties_[names[i]].name));
    }
    if (names.size() > mostNames) list += fmt::format(" and {} more", names.size() - mostNames);
    conversion.arguments = {list};
  }

  void describeMethod(const PlannedAction& action, Conversion& conversion) {
    conversion.message = "method";
    visitMembers(methods_, {action.extent.start, action.extent.start}, [&](std::size_t number) {
      const PlacedMember& method = methods_[number];
      conversion.member = to_string(method.name);
      conversion.place = method.nameExtent;
      conversion.arguments = {conversion.member};
      const auto newName = newNameOf(method);
      conversion.message = newName.empty() ? "deleted" : "renamed";
      if (!newName.empty()) conversion.arguments.push_back(newName);
    });
  }

  // Empty if the method is deleted.
  std::string newNameOf(const PlacedMember& method) const {
    for (const PlannedAction& action : planned_.actions) {
      if (action.extent == method.nameExtent) return to_string(action.edits.front().text);
    }
    return {};
  }

  const PlannedClass& planned_;
  const FileEdits& fileEdits_;
  std::vector<PlacedMember> properties_;
  std::vector<PlacedMember> methods_;
  std::vector<PlacedMember> blocks_;
  // The sets of the actions, followed by the blocks and the methods.
  Groups groups_;
  // For each property the first action that edits it, and whether it is deleted.
  std::vector<std::size_t> actionsOfProperties_;
  std::vector<bool> isDeleted_;
  // The other end of each deletion of the attribute rules.
  std::map<SourcePosition, SourcePosition> deletionsByStart_;
  std::map<SourcePosition, SourcePosition> deletionsByEnd_;
  // The index of each group's conversion, by its leader.
  std::unordered_map<std::size_t, std::size_t> numbers_;
  std::vector<Conversion> conversions_;
  // For each conversion its first action and its properties.
  std::vector<std::size_t> actions_;
  std::vector<std::vector<std::size_t>> names_;
};

}  // namespace

std::vector<Conversion> findConversions(const PlannedClass& planned, const FileEdits& fileEdits) {
  if (fileEdits.edits.empty() || planned.analysis->getClassdef() == nullptr) return {};
  return ConversionFinder(planned, fileEdits).find();
}

}  // namespace soca
