// A pass over a class with crowded lines: lines on which edits of one conversion meet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "conversions/choice/ConversionChooser.h"
#include "conversions/layout/LineBreaks.h"
#include "conversions/passes/TextChanges.h"
#include "conversions/risk/Risk.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"
#include "service/PlannedClass.h"

namespace soca {

// The conversions that can be made once some lines are laid apart.
struct LaidApart {
  // The text with the lines laid apart, which has the same conversions, and the same text as lines
  // of the text before.
  std::shared_ptr<const fl::ustring> text;
  std::shared_ptr<const SourceFile> lines;
  std::vector<LineBreak> breaks;
  // For each conversion the lines of the text before that are laid apart for it, counted from 0.
  std::vector<std::set<std::uint64_t>> linesOf;
  // What is made of the text with the lines laid apart.
  ChosenConversions chosen;
  // Of each conversion. Those with lines are to be reviewed.
  std::vector<ConversionRisk> risks;
};

// Searches conversions that were left out because their own edits meet, and that can be made if
// the lines on which they meet are laid apart. Lines are laid apart only for such conversions.
class LayoutSearch {
 public:
  using Judge = std::function<std::vector<ConversionRisk>(const PlannedClass&)>;

  // `planned`, `limits` and `wishes` must outlive this object. `planned` must have its analysis,
  // and `judge` finds the risks of such a plan. `wishes` are those of its conversions; empty if all
  // are selected. `analysesBefore` are those of earlier passes over the class.
  LayoutSearch(const PlannedClass* planned, const ChoiceLimits* limits,
               const std::vector<Wish>* wishes, Judge judge, unsigned analysesBefore)
      : planned_(*planned),
        limits_(*limits),
        wishes_(*wishes),
        judge_(std::move(judge)),
        analysesBefore_(analysesBefore) {}

  // `leftOut` has the reason for each conversion that is not made. A conversion that is found has a
  // risk of at least `review`, even if that is more than the limit. The overlay texts of other
  // classes must be in force. Throws what the rules throw.
  std::optional<LaidApart> search(const std::vector<std::optional<ConversionReason>>& leftOut);

  // The number of texts that were analysed.
  unsigned analyses() const { return analyses_; }

 private:
  std::optional<LaidApart> layApart(const std::vector<bool>& candidates);
  bool planAgain(LaidApart& laid, PlannedClass& planned);
  void choose(PlannedClass planned, const std::vector<bool>& candidates, LaidApart& laid);

  const PlannedClass& planned_;
  const ChoiceLimits& limits_;
  const std::vector<Wish>& wishes_;
  Judge judge_;
  unsigned analysesBefore_;
  unsigned analyses_ = 0;
};

// The reason not to make the conversion, with the places of its lines in the text before, or of all
// lines if it only depends on others that have some.
ConversionReason reasonForLayout(const LaidApart& laid, std::size_t conversion,
                                 const fl::ustring& oldText);

// The changes that lay the lines apart. `numbers` has one number for each conversion.
TextChanges findLayoutChanges(const LaidApart& laid, std::span<const std::uint32_t> numbers);

}  // namespace soca
