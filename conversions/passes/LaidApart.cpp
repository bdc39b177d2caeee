#include "conversions/passes/LaidApart.h"

#include <fmt/core.h>

#include <algorithm>
#include <exception>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "conversions/choice/GuiltyConversions.h"
#include "conversions/layout/SameTree.h"
#include "conversions/risk/Reasons.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

constexpr fl::ustring_view blanks = u"\t\v\f\r ";

using Lines = std::set<std::uint64_t>;

// For each conversion the lines of those on which it has an edit that it makes alone, or on which
// its edits meet.
std::vector<Lines> divideLines(const PlannedClass& candidates,
                               const std::vector<SelfMeeting>& meetings, const Lines& lines) {
  std::vector<Lines> linesOf(candidates.conversions.size());
  for (const SelfMeeting& each : meetings) linesOf[each.conversion].insert(each.line);
  for (std::size_t i = 0; i < candidates.actions.size(); ++i) {
    const std::uint64_t line = candidates.actions[i].extent.start.line;
    const auto owners = candidates.ownersOf(i);
    if (owners.size() == 1 && lines.contains(line)) {
      linesOf[owners.front().conversion].insert(line);
    }
  }
  return linesOf;
}

SourceFile applyBreaks(const fl::ustring& text, const ca::AnalysisResult& analysis,
                       const std::vector<LineBreak>& breaks) {
  SourceFile file{fl::ustring_view(text)};
  for (auto each = breaks.rbegin(); each != breaks.rend(); ++each) {
    const std::size_t start = analysis.lineStart(static_cast<std::uint32_t>(each->line));
    const std::uint64_t column = each->offset - start;
    file.replace(each->text, 0, {{each->line, column}, {each->line, column + each->length}});
  }
  return file;
}

bool haveSameConversions(const PlannedClass& left, const PlannedClass& right) {
  return std::ranges::equal(left.conversions, right.conversions, {}, &RuleConversion::kind,
                            &RuleConversion::kind);
}

// From the first character of one line to the last one of the other, without the line end.
RelatedPlace placeOfLines(const SourceFile& file, std::uint64_t first, std::uint64_t last) {
  const fl::ustring_view start = file.getLines()[first].text;
  const fl::ustring_view end = file.getLines()[last].text;
  RelatedPlace place;
  place.line = first + 1;
  place.column = start.find_first_not_of(blanks) + 1;
  place.endLine = last + 1;
  place.endColumn = end.find_last_not_of(blanks) + 2;
  place.text = "The line that is laid apart.";
  return place;
}

ConversionReason makeReason(std::vector<RelatedPlace> places) {
  const std::size_t count = places.size();
  return {std::string(laidApartId),
          count == 1 ? "a line would be laid apart"
                     : fmt::format("{} lines would be laid apart", count),
          std::move(places)};
}

// The reason with the places that the lines have once they are laid apart.
ConversionReason reasonAfterLayout(const SourceFile& newText, const std::vector<LineBreak>& breaks,
                                   const Lines& lines) {
  std::vector<RelatedPlace> places;
  for (const std::uint64_t line : lines) {
    const auto own = std::ranges::equal_range(breaks, line, {}, &LineBreak::line);
    const auto before = static_cast<std::uint64_t>(own.begin() - breaks.begin());
    places.push_back(placeOfLines(newText, line + before, line + before + own.size()));
  }
  return makeReason(std::move(places));
}

}  // namespace

std::optional<LaidApart> LayoutSearch::search(
    const std::vector<std::optional<ConversionReason>>& leftOut) {
  std::vector<bool> candidates(leftOut.size());
  for (std::size_t i = 0; i < leftOut.size(); ++i) {
    candidates[i] = leftOut[i] && leftOut[i]->id == editsMeetId;
  }
  // Each round has fewer candidates.
  while (std::ranges::find(candidates, true) != candidates.end()) {
    auto laid = layApart(candidates);
    if (!laid) return std::nullopt;
    const auto& failed = laid->chosen.leftOut;
    std::vector<bool> made = candidates;
    std::vector<bool> rest = candidates;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (!candidates[i] || !failed[i]) continue;
      made[i] = false;
      if (failed[i]->id != editsMeetId) rest[i] = false;
    }
    if (made == candidates) return laid;
    const bool isAnyMade = std::ranges::find(made, true) != made.end();
    if (!isAnyMade && rest == candidates) return std::nullopt;
    candidates = isAnyMade ? std::move(made) : std::move(rest);
  }
  return std::nullopt;
}

std::optional<LaidApart> LayoutSearch::layApart(const std::vector<bool>& candidates) {
  if (analysesBefore_ + analyses_ + 1 >= mostAnalyses) return std::nullopt;
  const PlannedClass attempt = planConversions(planned_, candidates, optionsOf(planned_));
  const std::vector<SelfMeeting> meetings = findSelfMeetings(attempt);
  Lines lines;
  for (const SelfMeeting& each : meetings) lines.insert(each.line);
  LaidApart laid;
  laid.breaks = findLineBreaks(*planned_.analysis, lines);
  if (laid.breaks.empty()) return std::nullopt;
  laid.linesOf = divideLines(attempt, meetings, lines);
  laid.lines = std::make_shared<const SourceFile>(
      applyBreaks(*planned_.oldText, *planned_.analysis, laid.breaks));
  laid.text = std::make_shared<const fl::ustring>(laid.lines->getText());
  const fl::filesystem::OverlayScope overlay(fl::i18n::to_string(planned_.result.fileName),
                                             laid.text);
  PlannedClass planned;
  if (!planAgain(laid, planned)) return std::nullopt;
  choose(std::move(planned), candidates, laid);
  return laid;
}

// Returns false if the text cannot be used.
bool LayoutSearch::planAgain(LaidApart& laid, PlannedClass& planned) {
  ClassPlan plan =
      planClassOnce(planned_.result.className, planned_.mask, false, optionsOf(planned_));
  ++analyses_;
  if (plan.failure) {
    try {
      std::rethrow_exception(plan.failure);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      return false;
    }
  }
  planned = std::move(*plan.planned);
  return haveSameConversions(planned_, planned) &&
         haveSameTree(*planned_.analysis, *planned.analysis, laid.breaks);
}

void LayoutSearch::choose(PlannedClass planned, const std::vector<bool>& candidates,
                          LaidApart& laid) {
  laid.risks = judge_(planned);
  const SourceFile newText{fl::ustring_view(*laid.text)};
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (laid.linesOf[i].empty()) continue;
    ConversionReason reason = reasonAfterLayout(newText, laid.breaks, laid.linesOf[i]);
    addReason(RiskType::review, std::move(reason), laid.risks[i]);
  }
  ChoiceLimits limits = limits_;
  limits.highestRisk = std::max(limits.highestRisk, RiskType::review);
  std::vector<Wish> wishes = wishes_;
  for (Wish& each : wishes) each.highestRisk = std::max(each.highestRisk, RiskType::review);
  laid.chosen = chooseConversions(std::move(planned), laid.risks, wishes, limits,
                                  analysesBefore_ + analyses_, &candidates);
  analyses_ += laid.chosen.analyses;
}

ConversionReason reasonForLayout(const LaidApart& laid, std::size_t conversion,
                                 const fl::ustring& oldText) {
  const SourceFile file{fl::ustring_view(oldText)};
  Lines lines = laid.linesOf[conversion];
  if (lines.empty()) {
    for (const LineBreak& each : laid.breaks) lines.insert(each.line);
  }
  std::vector<RelatedPlace> places;
  for (const std::uint64_t line : lines) places.push_back(placeOfLines(file, line, line));
  return makeReason(std::move(places));
}

TextChanges findLayoutChanges(const LaidApart& laid, std::span<const std::uint32_t> numbers) {
  std::map<std::uint64_t, std::vector<std::uint32_t>> conversionsOf;
  for (std::size_t i = 0; i < laid.linesOf.size(); ++i) {
    for (const std::uint64_t line : laid.linesOf[i]) conversionsOf[line].push_back(numbers[i]);
  }
  TextChanges changes;
  for (const LineBreak& each : laid.breaks) {
    changes.push_back({each.offset, each.length, each.text, conversionsOf[each.line]});
  }
  return changes;
}

}  // namespace soca
