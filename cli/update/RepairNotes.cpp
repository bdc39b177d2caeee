#include "cli/update/RepairNotes.h"

#include <fmt/core.h>

#include <algorithm>
#include <string>

#include "cli/update/WriteProgress.h"

namespace soca::cli {
namespace {

std::string describe(const RepairedRun& repaired) {
  const auto& [run, type, result] = repaired;
  std::string text = type == RepairedRun::Type::undoCompleted
                         ? fmt::format("the undo of run {} was interrupted", run)
                         : fmt::format("run {} was interrupted", run);
  const std::size_t count = result.restored.size();
  if (result.isCutShort) return text + "; putting its files back was interrupted, too";
  if (count == 0 && result.changed.size() + result.failed.size() > 0) {
    return text + "; not everything that it left could be put back or removed";
  }
  if (count == 0) return text + "; it had left no changed file, and what else it left is removed";
  return text + fmt::format("; {} as before the run now",
                            count == 1 ? "1 file that it had changed is"
                                       : fmt::format("{} files that it had changed are", count));
}

void print(const RepairedRun& repaired, Console& console) {
  if (repaired.type == RepairedRun::Type::notBegun) {
    console.tell(fmt::format("run {} was interrupted before it changed a file", repaired.run));
    return;
  }
  console.tell(describe(repaired));
  for (const std::string& warning : repaired.result.warnings) console.tell(warning);
  for (const LeftFile& file : repaired.result.changed) {
    console.complain(fmt::format("'{}' is left as it is: {}", file.path, file.reason));
  }
  for (const LeftFile& file : repaired.result.failed) {
    console.complain(
        fmt::format("'{}': {}; this is tried again with the next run", file.path, file.reason));
  }
}

}  // namespace

std::optional<RunStore::Lock> lockRuns(const RunStore& store, Console& console,
                                       const GoesOn& goesOn) {
  return store.lock([&] { console.tell("another soca is changing files; waiting for it to end"); },
                    goesOn);
}

std::vector<RepairedRun> repairAndReport(const RunStore& store, const RunStore::Lock& lock,
                                         Console& console, const GoesOn& goesOn,
                                         const std::vector<RepairedRun>& reported) {
  WriteProgress progress(&console, "files put back");
  auto all = repairRuns(store, lock, goesOn, progress.onStep());
  for (const RepairedRun& repaired : all) {
    const bool isKnown =
        std::ranges::find(reported, repaired.run, &RepairedRun::run) != reported.end();
    if (!isKnown) print(repaired, console);
  }
  return all;
}

void tellOfDamaged(const RunStore& store, Console& console) {
  for (const auto& [run, fault] : findDamagedRuns(store)) {
    console.tell(fmt::format(
        "warning: run {0} can be neither undone nor repaired: {1}; 'soca undo --forget {0}' names "
        "its files and removes the journal",
        run, fault));
  }
}

void tellOfInterrupted(const RunStore& store, std::string_view what, Console& console) {
  if (store.isLocked()) return;
  for (const RunNumber run : interruptedRuns(store)) {
    console.tell(
        fmt::format("warning: run {} was interrupted; {} first puts its files back", run, what));
  }
}

}  // namespace soca::cli
