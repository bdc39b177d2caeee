#include "cli/commands/RootGuard.h"

namespace soca::cli {

void RootGuard::take(const TargetOutcome& outcome) {
  if (outcome.superClasses.hasOnPath) search_.addFound();
  for (const std::string& missing : outcome.superClasses.missing) {
    search_.addMissing(missing, outcome.folder);
  }
}

void RootGuard::report(UpdateReport& report) const {
  if (stopsTheRun()) report.addSuggestion(*suggestion_, text());
}

void RootGuard::printNote(Console& console) const {
  if (suggestion_ && !stopsTheRun()) console.tell("note: " + text());
}

void RootGuard::printSuggestion(Console& console) const {
  if (stopsTheRun()) console.complain(text());
}

}  // namespace soca::cli
