// What an update does to each class, told action by action: for clients in this process that name
// lines, count conversions, or print edits.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "model/Extent.h"
#include "model/SourcePosition.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/UString.h"
#include "rules/RuleFamilies.h"
#include "soca/Updater.h"

namespace soca {

// One replacement. The extent is that of the action as it stands; the edit engine may take a
// delimiter behind it too, as `delimiterFlags` say.
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
  // As `Updater::update` returns it, but without its text.
  UpdateResult result;
  // The class's file as it was analysed.
  std::shared_ptr<ca::AnalysisResult> analysis;
  // Its text before the update; never null.
  std::shared_ptr<const fl::ustring> oldText;
  // The file of that text, as the analysis knows it.
  std::optional<fl::filesystem::FileState> oldFile;
  // The text after the update; null if no action was applied.
  std::shared_ptr<const fl::ustring> newText;
  // In the order in which they are applied.
  std::vector<PlannedAction> actions;
  // Where the edit engine would look for a delimiter and find something else, which would end the
  // process. The update of such a class stops in front of that edit: it has no new text, and
  // `updated` is false.
  std::optional<SourcePosition> missingDelimiter;

  // The text of the result: the new one if there is one, else that before the update.
  fl::ustring_view text() const { return newText ? *newText : *oldText; }
};

// The classes of the same call of `Updater::update`, with the same results, and what it throws.
std::vector<PlannedClass> planUpdate(const fl::ustring& className, const UpdateMask& mask,
                                     bool includeSuperclasses);

// The same classes and actions with none of them applied, so that nothing is raised where two meet:
// none has a new text.
std::vector<PlannedClass> planActions(const fl::ustring& className, const UpdateMask& mask,
                                      bool includeSuperclasses);

// How an update ends of a class that was just updated.
struct RepeatedUpdate {
  std::shared_ptr<ca::AnalysisResult> analysis;
  // Whether it changes the text again, or can't be made to its end for want of a delimiter.
  bool changesAgain = false;
};

// What `planUpdate` would come to for the class alone. Throws what that throws.
RepeatedUpdate repeatUpdate(const fl::ustring& className, const UpdateMask& mask);

}  // namespace soca
