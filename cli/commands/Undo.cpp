#include "cli/commands/Undo.h"

#include <fmt/chrono.h>
#include <fmt/core.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/RepairNotes.h"
#include "cli/commands/WriteProgress.h"
#include "cli/terminal/Signals.h"
#include "files/targets/ClassRoots.h"
#include "files/targets/UsageError.h"
#include "files/writing/Journal.h"
#include "files/writing/Restore.h"
#include "files/writing/RunStore.h"
#include "reports/text/Escapes.h"
#include "reports/text/FileNames.h"

namespace soca::cli {
namespace {

constexpr std::string_view listAdvice = "'soca undo --list' shows the runs";

// --- the list ---

std::string timeText(std::int64_t time) {
  const std::time_t seconds = time;
  std::tm parts = {};
  if (::localtime_r(&seconds, &parts) == nullptr) return "?";
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", parts);
}

std::string stateText(const Journal& journal, bool isBusy) {
  using StateType = Journal::StateType;
  switch (journal.state()) {
    case StateType::notBegun:
    case StateType::interrupted:
      return isBusy ? "running" : "interrupted";
    case StateType::done:
      return "done";
    case StateType::partlyUndone:
      return fmt::format("undone but for {}", journal.pending().size());
    case StateType::undone:
      return journal.wasDone() ? "undone" : "interrupted, undone";
    case StateType::damaged:
      break;
  }
  return "damaged";
}

std::string row(std::string_view run, std::string_view time, std::string_view files,
                std::string_view state, std::string_view folder) {
  return fmt::format("{:>4}  {:<19}  {:>7}  {:<19}  {}\n", run, time, files, state, folder);
}

std::string listRow(const RunStore& store, RunNumber run, bool isBusy) {
  const auto journal = openJournal(store.folderOf(run));
  const std::string number = fmt::format("{}", run);
  if (journal == nullptr) return row(number, "?", "?", "damaged", "?");
  return row(number, timeText(journal->time()), fmt::format("{}", journal->changedCount()),
             stateText(*journal, isBusy), withEscapesInLine(journal->commonFolder()));
}

ExitCodeType listRuns(const RunStore& store, Console& console) {
  const bool isBusy = store.isLocked();
  auto runs = store.runs();
  if (runs.empty()) {
    console.tell("no run has changed files yet");
    return ExitCodeType::done;
  }
  console.print(row("RUN", "TIME", "FILES", "STATE", "FOLDER"));
  std::ranges::reverse(runs);
  for (const RunNumber run : runs) console.print(listRow(store, run, isBusy));
  return ExitCodeType::done;
}

// --- the undo ---

RunNumber runOf(const std::string& argument) {
  if (const auto run = parseRunNumber(argument)) return *run;
  throw UsageError(fmt::format("'{}' is no number of a run; {}", argument, listAdvice));
}

// Throws JournalError if the run cannot be undone.
void checkUndoable(RunNumber run, const Journal& journal) {
  switch (journal.state()) {
    case Journal::StateType::undone:
      throw JournalError(fmt::format(
          "run {} {}; {}", run,
          journal.wasDone() ? "is undone already" : "was interrupted and is taken back already",
          listAdvice));
    case Journal::StateType::damaged:
      throw JournalError(
          fmt::format("the journal of run {} is damaged, so it can't be undone", run));
    default:
      return;
  }
}

std::string describe(RunNumber run, const Journal& journal, const RestoreResult& result) {
  const std::size_t restored = result.restored.size();
  std::string text = result.isCutShort ? "interrupted; " : "";
  text += fmt::format("run {}: {}", run,
                      restored == 1 ? "1 file is as it was before"
                                    : fmt::format("{} files are as they were before", restored));
  if (const std::size_t left = journal.pending().size(); left > 0) {
    text += fmt::format(", {} {} left; once nothing is in the way, 'soca undo {}' goes on", left,
                        left == 1 ? "is" : "are", run);
  }
  return text;
}

ExitCodeType undo(RunNumber run, Journal& journal, const Options& options, Console& console) {
  checkUndoable(run, journal);
  std::optional<WriteProgress> progress(std::in_place, &console, "files put back");
  const auto result = undoRun(journal, [] { return !wasInterrupted(); }, progress->onStep());
  progress.reset();
  const ClassRoots roots({});
  const FileNames names(&roots);
  if (options.verbose) {
    for (const std::uint32_t number : result.restored) {
      console.printError(names.shown(journal.files()[number].path) + ": as before\n");
    }
  }
  for (const auto* files : {&result.changed, &result.failed}) {
    for (const LeftFile& file : *files) {
      console.complain(
          fmt::format("'{}' is left as it is: {}", names.shown(file.path), file.reason));
    }
  }
  console.tell(describe(run, journal, result));
  if (result.isCutShort) return interruptExitCode();
  return journal.pending().empty() ? ExitCodeType::done : ExitCodeType::failed;
}

// The result of `undo` for a run that had to be repaired, which has undone it.
ExitCodeType exitCodeOfRepaired(const RunStore& store, RunNumber run) {
  if (wasInterrupted()) return interruptExitCode();
  const auto journal = openJournal(store.folderOf(run));
  const bool isUndone = journal == nullptr || journal->pending().empty() ||
                        journal->state() == Journal::StateType::notBegun;
  return isUndone ? ExitCodeType::done : ExitCodeType::failed;
}

}  // namespace

ExitCodeType runUndo(const Options& options, Console& console) {
  const RunStore store;
  if (options.list) return listRuns(store, console);
  std::optional<RunNumber> run;
  if (!options.arguments.empty()) run = runOf(options.arguments.front());

  catchBrokenPipes();
  const auto lock = lockRuns(store, console);
  if (!lock) return interruptExitCode();
  const auto all = store.runs();
  const auto repaired = repairAndReport(store, *lock, console);
  if (wasInterrupted()) return interruptExitCode();
  // Without a number, the last run is the interrupted one if there was one.
  if (!run && !repaired.empty() && repaired.back() == all.back()) run = repaired.back();
  if (run && std::ranges::find(repaired, *run) != repaired.end()) {
    return exitCodeOfRepaired(store, *run);
  }

  const auto runs = store.runs();
  if (!run && runs.empty()) throw JournalError("there is no run to undo");
  if (!run) run = runs.back();
  if (std::ranges::find(runs, *run) == runs.end()) {
    throw JournalError(fmt::format("there is no run {}; {}", *run, listAdvice));
  }
  Journal journal(store.folderOf(*run));
  return undo(*run, journal, options, console);
}

}  // namespace soca::cli
