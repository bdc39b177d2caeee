// What an update does to one class, as values: its conversions, actions, findings and new text.
#pragma once

#include <cstddef>
#include <cstdint>
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

// Why an action cannot be applied.
enum class EditFaultType {
  // It begins on a line that an earlier action edits.
  overlaps,
  // One of its edits begins after the end of its line.
  startsBehindLine,
  // Where a delimiter is to be replaced, there is another character.
  lacksDelimiter,
};

struct EditFault {
  EditFaultType type = EditFaultType::overlaps;
  // Of the missing delimiter.
  SourcePosition place;
  // The index of the action.
  std::size_t action = 0;
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
  // The conversions that each action results from, in the order of the actions.
  std::vector<ActionOwner> owners;
  // One for each message of the result.
  std::vector<RuleFinding> findings;
  // The place at which the edit engine would find another character than a delimiter, which would
  // end the process. The update of such a class stops before that edit: it has no new text, and
  // `updated` is false.
  std::optional<SourcePosition> missingDelimiter;
  // Whether faults were requested, and if so, the actions that cannot be applied, in their order. A
  // class with faults has no new text.
  bool listsFaults = false;
  std::vector<EditFault> faults;
  // Whether tidy edits were requested.
  bool isTidy = false;

  // The text of the result: the new text if there is one, otherwise the old one.
  fl::ustring_view text() const { return newText ? *newText : *oldText; }
  // The conversions that the action with this index results from: one, or several together.
  std::span<const ActionOwner> ownersOf(std::size_t action) const;
  // The property or method concerned.
  Member memberOf(const RuleFinding& finding) const;
  // The places of each finding, in the order of the findings. Walks through the tree and the text.
  std::vector<std::vector<FindingPlace>> findPlaces() const;
};

}  // namespace soca
