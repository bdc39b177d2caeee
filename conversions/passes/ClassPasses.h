// One class in passes: each pass converts what can be converted in the text that the one before it
// left, until nothing changes.
#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conversions/ClassUpdate.h"
#include "conversions/choice/ConversionChooser.h"
#include "conversions/passes/DeclaredNumbers.h"
#include "conversions/passes/LaidApart.h"
#include "conversions/passes/LineMap.h"
#include "conversions/passes/MethodUses.h"
#include "conversions/passes/TextChanges.h"
#include "platform/text/FileText.h"
#include "service/UpdatePlan.h"

namespace soca {

// The parts of the result to compute; the others stay empty.
struct PassNeeds {
  // The descriptions of all conversions, and not only of those that are left out.
  bool conversions = false;
  // The edits that make each conversion of the first pass alone, in a file of this encoding.
  std::optional<fl::EncodingType> editsOfEach;
  bool changes = false;
  FindingPlacesType places = FindingPlacesType::none;
};

// A class whose passes come to no end, which is a fault of the program.
class NotSettled : public std::exception {
 public:
  const char* what() const noexcept override { return "the passes come to no end"; }
};

// What earlier passes found and did, as far as it counts for later ones.
struct PassHistory {
  // The number of the last pass, counted from 1, and the number of those that changed the text.
  unsigned pass = 0;
  unsigned changes = 0;
  // The number of new texts that were analysed.
  unsigned analyses = 0;
  // The largest number of old forms that the text may have had, once there were many passes.
  std::size_t forms = 0;
  // The names of the methods that were deleted.
  std::vector<fl::ustring> deletedMethods;
};

class ClassPasses {
 public:
  // `first` is the plan of the text as it was read, with all conversions. It lists its faults, and
  // has its new lines. `limits` must outlive this object.
  // `history` is that of passes made elsewhere.
  ClassPasses(PlannedClass first, const ChoiceLimits* limits, const PassNeeds& needs,
              PassHistory history = {});

  // To be called before the first pass if the file is not the one for which conversions were
  // selected. They are left out then.
  void setOutdated() { isOutdated_ = true; }

  // Makes the conversions of the planned pass that can be made, and returns whether the text
  // changed. Throws NotSettled. `uses` are the methods that other classes use. Overlay texts of
  // superclasses must be in force, here and in `planNext`; the one of the class itself is not
  // needed.
  bool makePass(const std::vector<MethodUse>& uses = {});
  // The same, as the pass with this number of the whole run.
  bool makePass(unsigned pass, const std::vector<MethodUse>& uses);

  // Plans the next pass over the present text. Returns false if the class can no longer be planned.
  bool planNext();

  // The result, after a pass that changed nothing. To be called once. Without `changes`, its places
  // have the right lines but may have wrong columns.
  ClassUpdate takeUpdate();

  const std::string& file() const { return file_; }
  const std::shared_ptr<const fl::ustring>& oldText() const { return oldText_; }
  const std::shared_ptr<const fl::ustring>& text() const { return text_; }
  bool isChanged() const { return text_ != oldText_; }
  const PassHistory& history() const { return history_; }
  // The methods by whose presence the passes so far concern derived classes, and those that they
  // took away.
  MethodSet changedMethods() const { return changedMethods_; }
  MethodSet takenMethods() const { return takenMethods_; }
  // The methods for which the last pass found conversions, made or not.
  MethodSet foundMethods() const { return foundMethods_; }
  // Of the present text, after `planNext`; `before` are those of the text before the last pass.
  MethodNames findPresentNames(const MethodNames& before) const;
  // From the text as it was read to the present one, with the indices of the conversions in the
  // update; only if they are needed.
  const TextChanges& changes() const { return changes_; }

 private:
  // What a pass adds to the result if its new text is taken.
  struct Record {
    MethodSet changedMethods = 0;
    MethodSet takenMethods = 0;
    bool mayLoseReferences = false;
    PerKind<std::size_t> counts;
    std::vector<Conversion> conversions;
    std::vector<Finding> findings;
    std::vector<fl::ustring> deletedMethods;
    TextChanges changes;
  };

  using LeftOut = std::vector<std::optional<ConversionReason>>;

  std::vector<ConversionRisk> judge(const PlannedClass& planned,
                                    const std::vector<MethodUse>& uses) const;
  bool followsDeletion(const RuleConversion& conversion) const;
  std::vector<Wish> wish();
  RiskType highestRiskOf(std::size_t conversion) const;
  bool mayMakeWhole() const;
  bool isLarge() const;
  bool makeWhole();
  bool makeChosen(const std::vector<MethodUse>& uses);
  void takeChosen();
  bool layApart(const std::vector<MethodUse>& uses);
  void takeLayout(LaidApart laid);
  bool leaveOutForLayout(const LaidApart& laid);
  void planAgain();
  Record recordOf(const PlannedClass& planned, const LeftOut& leftOut);
  void describeInto(const PlannedClass& planned, const LeftOut& leftOut, Record& record);
  void take(Record record, std::shared_ptr<const fl::ustring> newText);
  void addLastPass();
  void checkSettling();
  bool keepsChanges() const;
  void moveKeptPlaces(const TextChanges& changes);
  void moveToOldText(std::vector<Conversion>& conversions, std::vector<Finding>& findings);

  const ChoiceLimits* limits_;
  PassNeeds needs_;
  std::string file_;
  std::shared_ptr<const fl::ustring> oldText_;
  std::shared_ptr<const fl::ustring> text_;
  PassHistory history_;
  bool isFirst_ = true;
  // Of the present pass.
  PlannedClass planned_;
  std::vector<ConversionRisk> risks_;
  // Empty if all are selected.
  std::vector<Wish> wishes_;
  bool isOutdated_ = false;
  LeftOut leftOut_;
  // Whether lines were laid apart in the present pass, and in any.
  bool isLaidApart_ = false;
  bool hasLayout_ = false;
  // The new text with all conversions, if it has faults.
  std::optional<FaultyText> faulty_;
  MethodSet changedMethods_ = 0;
  MethodSet takenMethods_ = 0;
  MethodSet foundMethods_ = 0;
  // Whether the last pass deleted text that may hold references.
  bool mayLoseReferences_ = false;
  // The result so far. The places of its findings and conversions are in the text as it was read.
  ClassUpdate update_;
  TextChanges changes_;
  LineMap lines_;
  // Of the text as it was read; empty if it was neither described nor selected from.
  std::optional<DeclaredNumbers> numbers_;
};

}  // namespace soca
