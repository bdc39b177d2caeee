// The effect of an update on each class, action by action and conversion by conversion: for clients
// in this process that report lines, print edits, or make only some of the conversions.
#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "model/SourcePosition.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/UString.h"
#include "rules/RuleConversion.h"
#include "rules/RuleFamilies.h"
#include "rules/RuleFinding.h"
#include "soca/Updater.h"

namespace soca {

// One replacement. The extent is that of the action; with `delimiterFlags`, the edit engine also
// replaces the delimiter after it.
struct PlannedEdit {
  Extent extent;
  fl::ustring text;
  std::uint64_t delimiterFlags = 0;
};

// One action of the action report: a single edit, or a group of edits that belong together.
struct PlannedAction {
  RuleFamilyType family = RuleFamilyType::attributes;
  bool isGroup = false;
  Extent extent;
  std::vector<PlannedEdit> edits;
};

struct PlannedClass {
  // The result of `Updater::update`, without its text.
  UpdateResult result;
  // The selected families.
  UpdateMask mask = 0;
  // The analysis of the class's file before the update.
  std::shared_ptr<ca::AnalysisResult> analysis;
  // Its text before the update; never null.
  std::shared_ptr<const fl::ustring> oldText;
  // The file of that text, from the analysis.
  std::optional<fl::filesystem::FileState> oldFile;
  // The text after the update; null if no action was applied.
  std::shared_ptr<const fl::ustring> newText;
  // The lines of the old text after the edits, from which the new text was made. Null without a new
  // text, and unless requested. Points to the old text.
  std::shared_ptr<const SourceFile> newLines;
  // In the order in which they are applied.
  std::vector<PlannedAction> actions;
  // All conversions that the rules found, made or not, in their order.
  std::vector<RuleConversion> conversions;
  // The conversions of each action, in the order of the actions.
  std::vector<ActionOwner> owners;
  // One for each message of the result.
  std::vector<RuleFinding> findings;
  // The place at which the edit engine would find another character than a delimiter, which would
  // end the process. The update of such a class stops before that edit: it has no new text, and
  // `updated` is false.
  std::optional<SourcePosition> missingDelimiter;

  // The text of the result: the new text if there is one, otherwise the old one.
  fl::ustring_view text() const { return newText ? *newText : *oldText; }
  // The conversions of the action with this index: none, one, or several.
  std::span<const ActionOwner> ownersOf(std::size_t action) const;
  // The property or method concerned.
  Member memberOf(const RuleFinding& finding) const;
  // The places of the finding. Walks through the tree.
  std::vector<FindingPlace> placesOf(const RuleFinding& finding) const;
};

// The parts of a plan that clients can request.
struct PlanOptions {
  bool keepLines = false;
};

// The classes and results of `Updater::update` with the same arguments; throws the same exceptions.
std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses, const PlanOptions& options = {});

// The same classes and actions, but not applied: overlaps raise nothing, and there are no new
// texts.
std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses);

// Plans the class again with only those conversions whose index has `true` in `made`, and the
// findings that result. Does not read or analyse the file again. With all conversions, the result
// and the exceptions are those of `planUpdate`; with none, the text does not change.
PlannedClass planConversions(const PlannedClass& planned, const std::vector<bool>& made,
                             const PlanOptions& options = {});

// The stages of an update, each of which is done for all classes before the next one.
enum class UpdateStageType { loading, rules, edits };

// The part that one class has in an update with superclasses.
struct ClassPlan {
  // The next classes of the walk, if the class could be loaded and they were asked for.
  std::vector<fl::ustring> superClassNames;
  // Null if a stage failed, which is then `stage`, with the exception that `planUpdate` throws.
  std::optional<PlannedClass> planned;
  UpdateStageType stage = UpdateStageType::loading;
  std::exception_ptr failure;
};

// Plans the class alone, for clients that plan each class once for all that derive from it. An
// update with superclasses fails with the first class that fails in the earliest stage.
ClassPlan planClassOnce(const fl::ustring& className, const UpdateMask& mask,
                        bool includeSuperclasses, const PlanOptions& options = {});

// The result of updating again a class that was just updated.
struct RepeatedUpdate {
  std::shared_ptr<ca::AnalysisResult> analysis;
  // Whether the update changes the text again, or stops because of a missing delimiter.
  bool changesAgain = false;
};

// Updates the class alone, as `planUpdate` does, and throws the same exceptions.
RepeatedUpdate repeatUpdate(const fl::ustring& className, const UpdateMask& mask);

}  // namespace soca
