// The conversions that a person selected, and what is reported of those that are not there.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "conversions/ClassUpdate.h"
#include "conversions/selection/ConversionSelection.h"
#include "files/targets/NearestName.h"
#include "reports/UpdateReport.h"

namespace soca::cli {

// The selection of the options. Throws UsageError for a file that is none.
ConversionSelection readSelection(const Options& options);

// Takes the updates of all classes of a run, with all their conversions. Does nothing if everything
// is selected.
class SelectionNotes {
 public:
  // Both must outlive this object.
  SelectionNotes(const Options* options, const ConversionSelection* selection);

  bool isActive() const { return !selection_->isEmpty(); }
  void take(const ClassUpdate& update);
  // The same for a class that was taken before; it replaces what was taken.
  void takeAgain(const ClassUpdate& update);
  // To be called after the last class.
  void report(UpdateReport& report, Console& console) const;

 private:
  struct Pattern {
    Pattern(std::string_view ofOption, const std::string& each)
        : option(ofOption), text(each), nearest(each) {}

    std::string_view option;
    std::string text;
    bool isMatched = false;
    NearestName nearest;
  };

  // Of a class of the selection.
  struct Missed {
    std::vector<std::string> notFound;
    std::size_t tooRisky = 0;
  };

  void matchPatterns(const ClassUpdate& update, bool isNew);
  void takeChosen(const ClassUpdate& update);
  void reportPatterns(Console& console) const;
  void reportOtherClasses(Console& console) const;

  const Options* options_;
  const ConversionSelection* selection_;
  std::vector<Pattern> patterns_;
  // By the indices of the classes in the selection: whether there was an update, and what is not
  // made of it, if there is something.
  std::vector<bool> isTaken_;
  std::map<std::size_t, Missed> missed_;
};

}  // namespace soca::cli
