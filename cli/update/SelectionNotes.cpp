#include "cli/update/SelectionNotes.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>

#include "conversions/selection/SelectionFile.h"
#include "files/targets/NearestFile.h"
#include "files/targets/UsageError.h"
#include "platform/paths/SourceReader.h"
#include "reports/text/TextLayout.h"

namespace soca::cli {
namespace {

constexpr std::uint64_t largestSelection = std::uint64_t{256} << 20U;

ChosenIds readIds(const std::string& file) {
  try {
    return parseSelection(fl::filesystem::readFileBytes(file, largestSelection));
  } catch (const fl::filesystem::ReadError& error) {
    throw UsageError(fmt::format("the selection can't be read: {}{}", error.what(),
                                 didYouMean(nearestPath(file))));
  } catch (const SelectionError& error) {
    throw UsageError(fmt::format(
        "the selection '{}' is wrong: {}; 'soca update --list --format json' prints a right one",
        file, error.what()));
  }
}

// The kind that a pattern names between `#` and `:` is misspelt, if it is no pattern itself.
std::string suggestKind(const std::string& pattern) {
  const std::size_t start = pattern.find('#') + 1;
  const std::string kind = pattern.substr(start, pattern.find(':', start) - start);
  if (start == 0 || !isPlainId(kind)) return {};
  return didYouMean(kind, conversionKinds, &ConversionKind::name);
}

}  // namespace

ConversionSelection readSelection(const Options& options) {
  ConversionSelection selection{options.only, options.skip, std::nullopt};
  if (!options.selectionFile.empty()) selection.ids = readIds(options.selectionFile);
  return selection;
}

SelectionNotes::SelectionNotes(const Options* options, const ConversionSelection* selection)
    : options_(options), selection_(selection) {
  for (const std::string& each : selection->only) patterns_.emplace_back("--only", each);
  for (const std::string& each : selection->skip) patterns_.emplace_back("--skip", each);
  if (selection->ids) isTaken_.resize(selection->ids->classCount());
}

void SelectionNotes::take(const ClassUpdate& update) {
  matchPatterns(update, true);
  takeChosen(update);
}

void SelectionNotes::takeAgain(const ClassUpdate& update) {
  matchPatterns(update, false);
  takeChosen(update);
}

// Each id is offered once, because a suggestion must be the only id that begins like the pattern.
void SelectionNotes::matchPatterns(const ClassUpdate& update, bool isNew) {
  for (Pattern& pattern : patterns_) {
    for (const Conversion& conversion : update.conversions) {
      if (pattern.isMatched) break;
      pattern.isMatched = matchesPattern(pattern.text, conversion.id);
      if (isNew && isPlainId(pattern.text)) pattern.nearest.offer(conversion.id);
    }
  }
}

void SelectionNotes::takeChosen(const ClassUpdate& update) {
  if (!selection_->ids) return;
  const ChosenIds& ids = *selection_->ids;
  const auto chosen = ids.findClass(update.className);
  if (!chosen) return;
  isTaken_[*chosen] = true;
  missed_.erase(*chosen);
  // The conversions of a refused class are not known.
  if (update.isRefused()) return;
  Missed missed{ids.idsOf(*chosen), 0};
  for (const Conversion& each : update.conversions) {
    if (!ids.acceptedRisk(*chosen, each.id)) continue;
    missed.notFound.erase(std::ranges::lower_bound(missed.notFound, each.id));
    if (each.leftOut && each.risk.type > options_->highestRisk()) ++missed.tooRisky;
  }
  if (!missed.notFound.empty() || missed.tooRisky > 0) missed_.emplace(*chosen, std::move(missed));
}

void SelectionNotes::report(UpdateReport& report, Console& console) const {
  std::size_t tooRisky = 0;
  for (const auto& [index, missed] : missed_) {
    tooRisky += missed.tooRisky;
    for (const std::string& id : missed.notFound) {
      report.addNotFound(id, "the class has no such conversion, or only after another one");
    }
  }
  reportPatterns(console);
  if (tooRisky > 0) {
    console.tell(fmt::format("note: {} of a higher risk than --risk {} left out",
                             tooRisky == 1 ? "1 selected conversion is"
                                           : groupDigits(tooRisky) + " selected conversions are",
                             riskName(options_->highestRisk())));
  }
  if (selection_->ids) reportOtherClasses(console);
}

void SelectionNotes::reportPatterns(Console& console) const {
  for (const Pattern& each : patterns_) {
    if (each.isMatched) continue;
    const std::string nearest = each.nearest.name();
    console.tell(fmt::format("note: no conversion of this run matches {} '{}'{}", each.option,
                             each.text,
                             nearest.empty() ? suggestKind(each.text) : didYouMean(nearest)));
  }
}

void SelectionNotes::reportOtherClasses(Console& console) const {
  const ChosenIds& ids = *selection_->ids;
  std::size_t conversions = 0;
  std::size_t classes = 0;
  std::size_t first = 0;
  for (std::size_t i = isTaken_.size(); i > 0; --i) {
    if (isTaken_[i - 1]) continue;
    first = i - 1;
    ++classes;
    conversions += ids.conversionCountOf(first);
  }
  if (classes == 0) return;
  console.tell(fmt::format(
      "note: {} selected, of {} without a result in this run: {}{}",
      conversions == 1 ? "1 conversion was" : groupDigits(conversions) + " conversions were",
      classes == 1 ? "1 class" : groupDigits(classes) + " classes", ids.nameOf(first),
      classes == 1 ? "" : ", ..."));
}

}  // namespace soca::cli
