#include "fuzz/conversions/PassProperties.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "conversions/Checks.h"
#include "conversions/passes/ClassPasses.h"
#include "fuzz/AnalysisProperties.h"
#include "fuzz/Violation.h"
#include "fuzz/changes/ChangeProperties.h"
#include "fuzz/conversions/LayoutProperties.h"
#include "fuzz/conversions/PlanAttempt.h"
#include "model/SourceFile.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "rules/MethodRules.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {
namespace {

using fl::filesystem::OverlayScope;
using Text = std::shared_ptr<const fl::ustring>;

// The id without the class, as the plan has it, and without its number.
std::string plainId(const Conversion& conversion) {
  return fuzz::plainId(conversion.id.substr(conversion.id.find('#') + 1));
}

// The conversions of the plan that were made in the pass, if their ids without numbers show it.
std::optional<std::vector<bool>> findMade(const PlannedClass& planned, const ClassUpdate& update,
                                          unsigned pass) {
  std::map<std::string, std::ptrdiff_t> counts;
  for (const Conversion& each : update.conversions) {
    if (each.pass == pass) ++counts[plainId(each)];
  }
  std::vector<bool> made;
  const auto ids = plainIds(planned);
  for (const std::string& id : ids) {
    const auto count = counts.find(id);
    made.push_back(count != counts.end());
    if (made.back() && count->second != std::ranges::count(ids, id)) return std::nullopt;
  }
  for (const auto& [id, count] : counts) {
    require(std::ranges::find(ids, id) != ids.end(), "'{}' is made and was not found", id);
  }
  return made;
}

class PassCheck {
 public:
  PassCheck(fl::ustring className, RiskType highestRisk, bool isTidy)
      : className_(std::move(className)),
        limits_{highestRisk, RuleChoice()},
        options_{.keepLines = true, .listFaults = true, .isTidy = isTidy} {}

  unsigned run() {
    PlanAttempt first = plan();
    if (!first.planned) return 0;
    file_ = fl::i18n::to_string(first.planned->result.fileName);
    texts_.push_back(first.planned->oldText);
    ClassPasses passes(std::move(*first.planned), &limits_,
                       {.conversions = true,
                        .editsOfEach = fl::EncodingType::utf8,
                        .changes = true,
                        .places = FindingPlacesType::related});
    makeAll(passes, &texts_);
    update_ = passes.takeUpdate();
    checkConversions();
    checkFindings();
    checkChangesOf(passes);
    checkEachPass();
    checkLean();
    checkSecond();
    if (options_.isTidy) checkLineEnds();
    return static_cast<unsigned>(texts_.size()) - 1;
  }

 private:
  PlanAttempt plan() const {
    return attemptPlan(
        [&] { return std::move(planUpdate(className_, allFamilies, false, options_).front()); });
  }

  PlanAttempt planOf(const Text& text) const {
    const OverlayScope overlay(file_, text);
    return plan();
  }

  static MethodNames namesIn(const fl::ustring& text) {
    return findMethodNames(*ca::analyzeText(fl::ustring(text)));
  }

  // Adds the text after each pass that changes it.
  static void makeAll(ClassPasses& passes, std::vector<Text>* texts) {
    MethodNames names = namesIn(*passes.text());
    while (passes.makePass()) {
      if (texts != nullptr) texts->push_back(passes.text());
      const bool isPlanned = passes.planNext();
      names = passes.findPresentNames(names);
      require(names == namesIn(*passes.text()), "a pass adds or loses a use of a method");
      if (!isPlanned) return;
    }
  }

  // --- conversions and findings ---

  void checkConversions() const {
    std::set<std::string> ids;
    PerKind<std::size_t> made;
    PerKind<std::size_t> leftOut;
    const SourceFile lines(*texts_.front());
    for (const Conversion& each : update_.conversions) {
      require(ids.insert(each.id).second, "two conversions are '{}'", each.id);
      checkPlace(each, lines);
      ++(each.isMade() ? made : leftOut)[each.kind];
      checkReason(each);
    }
    for (const ConversionKind& kind : conversionKinds) {
      require(made[kind.type] == update_.conversionCounts[kind.type] &&
                  leftOut[kind.type] == update_.leftOutCounts[kind.type],
              "the numbers of '{}' are wrong", kind.name);
    }
  }

  // The place of a member is its name in the text as it was read, before it was renamed.
  static void checkPlace(const Conversion& conversion, const SourceFile& lines) {
    const Extent& place = conversion.place;
    require(place.end.line < lines.getLines().size(), "'{}' has no place", conversion.id);
    if (conversion.member.empty()) return;
    const fl::ustring member = fl::i18n::to_ustring(conversion.member);
    const fl::ustring_view text =
        lines.getLines()[place.start.line].text.substr(place.start.column);
    const fl::ustring_view oldName = oldNameOf(member);
    require(text.starts_with(member) || (!oldName.empty() && text.starts_with(oldName)),
            "the place of '{}' has another text", conversion.id);
  }

  void checkReason(const Conversion& conversion) const {
    if (conversion.isMade()) {
      require(conversion.pass >= 1 && conversion.pass < texts_.size(), "'{}' is made in pass {}",
              conversion.id, conversion.pass);
      require(conversion.risk.type <= limits_.highestRisk, "'{}' is too risky", conversion.id);
      checkLaidApart(conversion);
      return;
    }
    require(conversion.pass == 0, "'{}' is made and left out", conversion.id);
    const ConversionReason& reason = *conversion.leftOut;
    require(!reason.id.empty() && !reason.detail.empty(), "'{}' has no reason", conversion.id);
    for (const RelatedPlace& place : reason.places) {
      require(place.line > 0 && place.line <= place.endLine, "{} without a place", reason.id);
    }
  }

  // The lines are in the text as it was read.
  void checkLaidApart(const Conversion& conversion) const {
    const ConversionReason* layout = conversion.findLaidApart();
    if (layout == nullptr) return;
    require(conversion.edits.empty(), "'{}' has edits without its layout", conversion.id);
    const auto lines = SourceFile(*texts_.front()).getNumberOfLines();
    for (const RelatedPlace& place : layout->places) {
      require(place.line > 0 && place.line <= place.endLine && place.endLine <= lines,
              "'{}' is laid apart after the text", conversion.id);
    }
  }

  void checkFindings() const {
    const SourceFile oldLines(*texts_.front());
    const SourceFile newLines(*texts_.back());
    for (const Finding& each : update_.findings) {
      require(each.line > 0 && each.endLine <= oldLines.getLines().size(), "'{}' has no place",
              each.text);
      require(each.newPlace.endLine <= newLines.getLines().size(), "'{}' is after the new text",
              each.text);
    }
  }

  void checkChangesOf(const ClassPasses& passes) const {
    const fl::ustring& oldText = *texts_.front();
    require(applyChanges(oldText, passes.changes()) == *texts_.back(),
            "the changes give another text");
    checkChangeList(oldText, passes.changes());
    for (const TextChange& change : passes.changes()) {
      for (const std::uint32_t number : change.conversions) {
        require(number < update_.conversions.size() && update_.conversions[number].isMade(),
                "the change at {} is of no made conversion", change.offset);
      }
    }
  }

  // --- each pass ---

  void checkEachPass() const {
    PassHistory history;
    for (unsigned pass = 1; pass < texts_.size(); ++pass) {
      PlanAttempt before = planOf(texts_[pass - 1]);
      require(before.planned.has_value(), "pass {} cannot be planned again", pass);
      checkMade(*before.planned, pass);
      const OverlayScope overlay(file_, texts_[pass - 1]);
      ClassPasses step(std::move(*before.planned), &limits_, {}, std::move(history));
      step.makePass(pass, {});
      require(*step.text() == *texts_[pass], "pass {} alone gives another text", pass);
      history = step.history();
    }
  }

  // The made conversions alone give the text, and it passes the checks.
  void checkMade(const PlannedClass& planned, unsigned pass) const {
    const auto analysis = ca::analyzeText(fl::ustring(*texts_[pass]));
    require(!analysis->hasSyntaxError(), "pass {} gives a syntax error", pass);
    checkSkipping(*analysis, planned.analysis->knownFunctions());
    checkSkipping(*analysis, {nullptr, analysis->knownFunctions().ranges});
    const auto made = findMade(planned, update_, pass);
    if (!made) return;
    const bool hasLayout = std::ranges::any_of(update_.conversions, [&](const Conversion& each) {
      return each.pass == pass && each.findLaidApart() != nullptr;
    });
    if (hasLayout) {
      const auto text = std::make_shared<const fl::ustring>(layApart(planned, *made));
      const PlanAttempt laidApart = planOf(text);
      require(laidApart.planned.has_value(), "the lines of pass {} cannot be planned", pass);
      checkMade(*laidApart.planned, text, *made, pass, *analysis);
    } else {
      checkMade(planned, texts_[pass - 1], *made, pass, *analysis);
    }
  }

  void checkMade(const PlannedClass& planned, const Text& text, const std::vector<bool>& made,
                 unsigned pass, const ca::AnalysisResult& analysis) const {
    const OverlayScope overlay(file_, text);
    const PlannedClass again = planConversions(planned, made, options_);
    require(again.faults.empty() && again.text() == *texts_[pass],
            "the conversions of pass {} give another text", pass);
    const auto fault = NewTextCheck(again).findFault(analysis);
    require(!fault, "the text of pass {} has faults: {}", pass, fault ? fault->text : "");
  }

  // --- the whole once more ---

  void checkLean() const {
    PlanAttempt first = plan();
    ClassPasses passes(std::move(*first.planned), &limits_, {.places = FindingPlacesType::related});
    makeAll(passes, nullptr);
    const ClassUpdate lean = passes.takeUpdate();
    require(*passes.text() == *texts_.back(), "fewer needs give another text");
    const auto areSame = [](const Finding& left, const Finding& right) {
      return left.text == right.text && left.line == right.line &&
             left.newPlace.line == right.newPlace.line;
    };
    require(std::ranges::is_permutation(lean.findings, update_.findings, areSame),
            "fewer needs give other findings");
    for (const ConversionKind& kind : conversionKinds) {
      require(lean.conversionCounts[kind.type] == update_.conversionCounts[kind.type] &&
                  lean.leftOutCounts[kind.type] == update_.leftOutCounts[kind.type],
              "fewer needs give other numbers of '{}'", kind.name);
    }
  }

  void checkSecond() const {
    PlanAttempt last = planOf(texts_.back());
    if (!last.planned) return;
    std::vector<std::string> leftOut;
    for (const Conversion& each : update_.conversions) {
      if (!each.isMade()) leftOut.push_back(plainId(each));
    }
    require(std::ranges::is_permutation(leftOut, plainIds(*last.planned)),
            "the last text has other conversions than those that are left out");
    const OverlayScope overlay(file_, texts_.back());
    ClassPasses passes(std::move(*last.planned), &limits_, {});
    require(!passes.makePass(), "a second update changes the text again");
  }

  static std::ptrdiff_t countBlankEnds(const Text& text) {
    const SourceFile file(*text);
    return std::ranges::count_if(file.getLines(), [](const SourceFile::Line& line) {
      const fl::ustring_view rest = line.text.substr(0, line.text.find_last_not_of(u'\r') + 1);
      return !SourceFile::isEmptied(rest) && (rest.ends_with(u' ') || rest.ends_with(u'\t'));
    });
  }

  void checkLineEnds() const {
    require(countBlankEnds(texts_.back()) <= countBlankEnds(texts_.front()),
            "more lines end with a blank");
  }

  fl::ustring className_;
  ChoiceLimits limits_;
  PlanOptions options_;
  std::string file_;
  // The text as it was read, and those after the passes that changed it.
  std::vector<Text> texts_;
  ClassUpdate update_;
};

}  // namespace

unsigned checkPasses(const fl::ustring& className, RiskType highestRisk, bool isTidy) {
  try {
    return PassCheck(className, highestRisk, isTidy).run();
  } catch (const Violation& violation) {
    throw Violation(fmt::format("with risk '{}'{}: {}", riskName(highestRisk),
                                isTidy ? ", tidy" : "", violation.what()));
  }
}

}  // namespace soca::fuzz
