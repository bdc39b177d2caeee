// Whether a run has the right roots.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/options/Options.h"
#include "cli/terminal/Console.h"
#include "files/targets/RootSearch.h"
#include "reports/RootText.h"
#include "reports/UpdateReport.h"
#include "reports/outcomes/Outcome.h"
#include "reports/text/FileNames.h"

namespace soca::cli {

// Takes all outcomes of a run. If no root was given and the current folder is the wrong one, the
// run must not write, and fails; if roots were given, there is only a note.
class RootGuard {
 public:
  // All must outlive the guard.
  RootGuard(const Options* options, const ClassRoots* roots, const FileNames* names,
            const std::vector<NamedFolder>* named)
      : options_(options), names_(names), search_(roots, named) {}

  void take(const TargetOutcome& outcome) {
    for (const std::string& found : outcome.superClasses.onPath) search_.addFound(found);
    for (const std::string& missing : outcome.superClasses.missing) {
      search_.addMissing(missing, outcome.folder);
    }
  }
  // To be called after the last outcome. A run that has nothing to convert, and failed nowhere, is
  // not stopped.
  void look(bool hasNothingToDo) {
    suggestion_ = search_.find();
    isHarmless_ = hasNothingToDo;
  }

  bool stopsTheRun() const {
    return suggestion_ && suggestion_->isWrong && !isHarmless_ && options_->roots.empty();
  }
  // Passes the suggestion to the report if it stops the run.
  void report(UpdateReport& report) const {
    if (stopsTheRun()) report.addSuggestion(*suggestion_, text());
  }
  // For a suggestion that does not stop the run.
  void printNote(Console& console) const {
    if (suggestion_ && !stopsTheRun()) console.tell("note: " + text());
  }
  // For a suggestion that stops it; the last line of the run.
  void printSuggestion(Console& console) const {
    if (stopsTheRun()) console.complain(text());
  }

 private:
  std::string text() const { return describeSuggestion(*suggestion_, *names_, stopsTheRun()); }

  const Options* options_;
  const FileNames* names_;
  RootSearch search_;
  std::optional<SuggestedRoots> suggestion_;
  bool isHarmless_ = false;
};

}  // namespace soca::cli
