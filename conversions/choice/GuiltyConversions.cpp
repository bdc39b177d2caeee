#include "conversions/choice/GuiltyConversions.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>

#include "conversions/Findings.h"
#include "conversions/parts/LinePlace.h"
#include "model/AnalyzerPositions.h"
#include "model/SourceFile.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

using fl::i18n::to_string;

ConversionReason makeReason(std::string_view id, std::string detail) {
  return {std::string(id), std::move(detail), {}};
}

constexpr const char* ownEditsMeet = "two of its edits meet";

// Lists each conversion once, with the reason that it is given first.
class GuiltyList {
 public:
  void add(std::size_t conversion, ConversionReason reason, std::vector<std::size_t> meets = {}) {
    if (!known_.insert(conversion).second) return;
    guilty_.push_back({conversion, std::move(reason), std::move(meets)});
  }

  bool haveOwnerOf(const PlannedClass& planned, std::size_t action) const {
    return std::ranges::any_of(planned.ownersOf(action), [&](const ActionOwner& owner) {
      return known_.contains(owner.conversion);
    });
  }

  bool empty() const { return guilty_.empty(); }
  std::vector<GuiltyConversion> take() { return std::move(guilty_); }

 private:
  std::vector<GuiltyConversion> guilty_;
  std::unordered_set<std::size_t> known_;
};

// The last conversion that the action results from, in the order of the rules.
std::size_t lastOwnerOf(const PlannedClass& planned, std::size_t action) {
  return planned.ownersOf(action).back().conversion;
}

// --- edits that cannot be made ---

// The actions that could be applied, by their first lines.
class AppliedActions {
 public:
  explicit AppliedActions(const PlannedClass& planned) : planned_(planned) {}

  // To be called in the order of the actions.
  void add(std::size_t action) {
    const Extent& extent = planned_.actions[action].extent;
    if (extent.end.line >= extent.start.line) {
      byLine_.insert_or_assign(extent.start.line, action);
    }
  }

  // The one that touches the line.
  std::optional<std::size_t> at(std::uint64_t line) const {
    for (auto each = std::make_reverse_iterator(byLine_.upper_bound(line)); each != byLine_.rend();
         ++each) {
      if (planned_.actions[each->second].extent.end.line >= line) return each->second;
    }
    return std::nullopt;
  }

 private:
  const PlannedClass& planned_;
  std::map<std::uint64_t, std::size_t> byLine_;
};

// An action that cannot be applied, with the one that edits its first line, if that is known.
struct FaultyAction {
  const EditFault* fault;
  std::optional<std::size_t> other;
};

std::vector<FaultyAction> findFaultyActions(const PlannedClass& planned) {
  std::vector<FaultyAction> found;
  AppliedActions applied(planned);
  auto fault = planned.faults.begin();
  for (std::size_t i = 0; i < planned.actions.size(); ++i) {
    if (fault == planned.faults.end() || fault->action != i) {
      applied.add(i);
      continue;
    }
    const bool overlaps = fault->type == EditFaultType::overlaps;
    const std::uint64_t line = planned.actions[i].extent.start.line;
    found.push_back({&*fault, overlaps ? applied.at(line) : std::nullopt});
    ++fault;
  }
  return found;
}

std::uint64_t lineOf(const PlannedClass& planned, const FaultyAction& faulty) {
  return planned.actions[faulty.fault->action].extent.start.line;
}

ConversionReason makeMeeting(const char* what, const PlannedClass& planned,
                             const FaultyAction& faulty) {
  const SourcePosition& start = planned.actions[faulty.fault->action].extent.start;
  ConversionReason reason = makeReason(editsMeetId, what);
  reason.places.push_back({placeOf({start, start}), "The line with both."});
  return reason;
}

// Finds conversions whose own edits meet: they cannot be made, whatever the others do.
class SelfMeetings {
 public:
  explicit SelfMeetings(const PlannedClass& planned) : planned_(planned) {
    for (const RuleConversion& each : planned.conversions) {
      extents_.push_back(findExtent(*planned.analysis, each));
    }
  }

  // The conversions whose edits meet on the first line of the action.
  std::vector<std::size_t> find(const FaultyAction& faulty) const {
    if (!faulty.other) return {};
    const std::uint64_t line = lineOf(planned_, faulty);
    const auto own = ownersAt(line, faulty.fault->action);
    const auto others = ownersAt(line, *faulty.other);
    std::vector<std::size_t> both;
    std::ranges::set_intersection(own, others, std::back_inserter(both));
    const bool areAlone = planned_.ownersOf(faulty.fault->action).size() == 1 &&
                          planned_.ownersOf(*faulty.other).size() == 1;
    // What several make together is not made so by one alone.
    std::erase_if(both, [&](std::size_t each) {
      return !areAlone && !meetsAlone(planned_.conversions[each]);
    });
    return both;
  }

 private:
  // Those that make the action, ascending; of several, those whose subject is on the line.
  std::vector<std::size_t> ownersAt(std::uint64_t line, std::size_t action) const {
    const auto owners = planned_.ownersOf(action);
    std::vector<std::size_t> found;
    for (const ActionOwner& owner : owners) {
      const Extent& extent = extents_[owner.conversion];
      const bool isThere = extent.start.line <= line && line <= extent.end.line;
      if (owners.size() == 1 || isThere) found.push_back(owner.conversion);
    }
    return found;
  }

  std::uint64_t firstLineOf(const ca::astapi::Node& node) const {
    return makeExtentOfNode(*planned_.analysis, node).start.line;
  }

  // Whether the conversion of an attribute edits a line twice: that of the attribute and that of
  // each property.
  bool meetsAlone(const RuleConversion& conversion) const {
    if (!conversion.isTakenOver || conversion.block->attributes.empty()) return false;
    const ca::astapi::Node& attribute = *conversion.block->attributes.back();
    std::set<std::uint64_t> lines = {makeExtentOfNode(*planned_.analysis, attribute).end.line};
    return std::ranges::any_of(conversion.block->members, [&](const ca::astapi::Node* member) {
      return !lines.insert(firstLineOf(*member)).second;
    });
  }

  const PlannedClass& planned_;
  std::vector<Extent> extents_;
};

// The last of those that make the two actions, with the others.
void addGuiltyOfOverlap(const PlannedClass& planned, const FaultyAction& faulty,
                        GuiltyList& guilty) {
  std::set<std::size_t> owners;
  for (const auto action : {std::optional(faulty.fault->action), faulty.other}) {
    if (!action) continue;
    for (const ActionOwner& owner : planned.ownersOf(*action)) owners.insert(owner.conversion);
  }
  const std::size_t last = *owners.rbegin();
  owners.erase(last);
  const char* what = owners.empty() ? ownEditsMeet : "another conversion edits the line";
  guilty.add(last, makeMeeting(what, planned, faulty), {owners.begin(), owners.end()});
}

void addGuiltyOf(const PlannedClass& planned, const FaultyAction& faulty, GuiltyList& guilty) {
  const EditFault& fault = *faulty.fault;
  if (guilty.haveOwnerOf(planned, fault.action)) return;
  if (faulty.other && guilty.haveOwnerOf(planned, *faulty.other)) return;
  switch (fault.type) {
    case EditFaultType::overlaps:
      return addGuiltyOfOverlap(planned, faulty, guilty);
    case EditFaultType::startsBehindLine:
      return guilty.add(lastOwnerOf(planned, fault.action),
                        makeMeeting(ownEditsMeet, planned, faulty));
    case EditFaultType::lacksDelimiter:
      return guilty.add(lastOwnerOf(planned, fault.action),
                        makeReason("soca:DelimiterNotFound",
                                   fmt::format("line {}, column {} has something else than a "
                                               "delimiter",
                                               fault.place.line + 1, fault.place.column + 1)));
  }
}

// --- faults of a new text ---

// The lines of the new text that hold edited text, with the lines of the old text they come from.
class NewLines {
 public:
  explicit NewLines(const SourceFile& file) {
    const auto& lines = file.getLines();
    std::uint64_t newLine = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if ((lines[i].flags & SourceFile::LineDeleted) != 0) continue;
      if (lines[i].flags != 0) edited_.emplace(newLine, i);
      const bool endsLine = (lines[i].flags & SourceFile::LineNoNewline) == 0;
      const auto ends = std::ranges::count(lines[i].text, u'\n');
      if (ends > 0) {
        for (std::ptrdiff_t end = 1; end <= ends; ++end) {
          edited_.emplace(newLine + static_cast<std::uint64_t>(end), i);
        }
      }
      newLine += static_cast<std::uint64_t>(ends) + (endsLine ? 1 : 0);
    }
  }

  // The lines of the old text in the line of the new one; empty if none of them is edited.
  std::vector<std::uint64_t> oldLinesOf(std::uint64_t newLine) const {
    std::vector<std::uint64_t> lines;
    const auto [first, last] = edited_.equal_range(newLine);
    std::transform(first, last, std::back_inserter(lines),
                   [](const auto& entry) { return entry.second; });
    return lines;
  }

 private:
  std::multimap<std::uint64_t, std::uint64_t> edited_;
};

// The conversions that edit each line of the old text.
class EditedLines {
 public:
  explicit EditedLines(const PlannedClass& planned) {
    for (std::size_t i = 0; i < planned.actions.size(); ++i) {
      for (const PlannedEdit& edit : planned.actions[i].edits) {
        byLine_.emplace(edit.extent.start.line, lastOwnerOf(planned, i));
      }
    }
  }

  // The last one, in the order of the rules.
  std::optional<std::size_t> lastAt(std::uint64_t line) const {
    const auto [first, last] = byLine_.equal_range(line);
    const auto found = std::max_element(
        first, last, [](const auto& a, const auto& b) { return a.second < b.second; });
    return found == last ? std::nullopt : std::optional(found->second);
  }

 private:
  std::multimap<std::uint64_t, std::size_t> byLine_;
};

// The lines of a text, without the blanks around them.
class TrimmedLines {
 public:
  explicit TrimmedLines(fl::ustring_view text) {
    std::size_t start = 0;
    for (std::size_t end = text.find(u'\n'); end != fl::ustring_view::npos;
         end = text.find(u'\n', start)) {
      lines_.push_back(text.substr(start, end - start));
      start = end + 1;
    }
    lines_.push_back(text.substr(start));
  }

  std::string at(std::uint64_t line) const {
    constexpr fl::ustring_view blanks = u"\t\n\v\f\r ";
    fl::ustring_view text = line < lines_.size() ? lines_[line] : fl::ustring_view();
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return to_string(fl::ustring(text.substr(0, text.find_last_not_of(blanks) + 1)));
  }

 private:
  std::vector<fl::ustring_view> lines_;
};

void addGuiltyOfSyntax(const PlannedClass& planned, const ca::AnalysisResult& updated,
                       GuiltyList& guilty) {
  const NewLines newLines(*planned.newLines);
  const EditedLines edited(planned);
  const TrimmedLines texts(planned.text());
  for (const ca::Diagnostic& error : updated.diagnostics()) {
    for (const std::uint64_t line : newLines.oldLinesOf(error.line)) {
      const auto conversion = edited.lastAt(line);
      if (!conversion) continue;
      guilty.add(*conversion, makeReason("soca:ResultHasSyntaxError",
                                         fmt::format("the new line would be `{}`: {}",
                                                     texts.at(error.line), error.message)));
    }
  }
}

// The conversions by the names of the members that they concern.
class ConversionsByMember {
 public:
  explicit ConversionsByMember(const PlannedClass& planned) {
    for (std::size_t i = 0; i < planned.conversions.size(); ++i) {
      const RuleConversion& each = planned.conversions[i];
      for (const Member& member : findMembers(*planned.analysis, each)) {
        byName_[member.name].push_back(i);
      }
      if (!each.newName.empty()) byName_[fl::ustring(each.newName)].push_back(i);
    }
  }

  const std::vector<std::size_t>& of(const fl::ustring& member) const {
    static const std::vector<std::size_t> none;
    const auto place = byName_.find(member);
    return place == byName_.end() ? none : place->second;
  }

 private:
  std::map<fl::ustring, std::vector<std::size_t>> byName_;
};

void addGuiltyOfMembers(const PlannedClass& planned, const NewTextFault& fault,
                        GuiltyList& guilty) {
  const ConversionsByMember conversions(planned);
  std::unordered_set<std::size_t> made;
  for (const ActionOwner& owner : planned.owners) made.insert(owner.conversion);
  for (const fl::ustring& member : fault.members) {
    for (const std::size_t each : conversions.of(member)) {
      if (made.contains(each)) guilty.add(each, reasonFor(fault));
    }
  }
}

}  // namespace

std::vector<SelfMeeting> findSelfMeetings(const PlannedClass& planned) {
  const SelfMeetings meetings(planned);
  std::vector<SelfMeeting> found;
  for (const FaultyAction& each : findFaultyActions(planned)) {
    for (const std::size_t conversion : meetings.find(each)) {
      found.push_back({conversion, lineOf(planned, each)});
    }
  }
  return found;
}

std::vector<GuiltyConversion> findGuiltyOfFaults(const PlannedClass& planned) {
  GuiltyList guilty;
  std::vector<FaultyAction> faulty = findFaultyActions(planned);
  const SelfMeetings meetings(planned);
  for (const FaultyAction& each : faulty) {
    for (const std::size_t conversion : meetings.find(each)) {
      guilty.add(conversion, makeMeeting(ownEditsMeet, planned, each));
    }
  }
  if (!guilty.empty()) return guilty.take();
  // What several conversions do together is not done without the guilty one of them, so its own
  // actions show first which one that is.
  std::ranges::stable_partition(faulty, [&](const FaultyAction& each) {
    return planned.ownersOf(each.fault->action).size() == 1;
  });
  for (const FaultyAction& each : faulty) addGuiltyOf(planned, each, guilty);
  return guilty.take();
}

std::vector<GuiltyConversion> findGuiltyOfText(const PlannedClass& planned,
                                               const ca::AnalysisResult& updated,
                                               const NewTextFault& fault) {
  GuiltyList guilty;
  switch (fault.type) {
    case NewTextFault::Type::syntaxError:
      addGuiltyOfSyntax(planned, updated, guilty);
      break;
    case NewTextFault::Type::otherMembers:
      addGuiltyOfMembers(planned, fault, guilty);
      break;
    case NewTextFault::Type::lostText:
      if (!fault.line) break;
      if (const auto conversion = EditedLines(planned).lastAt(*fault.line)) {
        guilty.add(*conversion, reasonFor(fault));
      }
      break;
  }
  return guilty.take();
}

ConversionReason reasonFor(const NewTextFault& fault) {
  switch (fault.type) {
    case NewTextFault::Type::syntaxError:
      return makeReason("soca:ResultHasSyntaxError", fault.text);
    case NewTextFault::Type::otherMembers:
      return makeReason("soca:ResultChangesMembers", fault.text);
    case NewTextFault::Type::lostText:
      return makeReason("soca:ResultLosesText", fault.text);
  }
  return {};
}

}  // namespace soca
