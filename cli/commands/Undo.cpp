#include "cli/commands/Undo.h"

#include <fmt/chrono.h>
#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/UndoRequest.h"
#include "cli/terminal/Signals.h"
#include "cli/update/RepairNotes.h"
#include "cli/update/WriteProgress.h"
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

RunNumber runOf(const std::string& argument) {
  if (const auto run = parseRunNumber(argument)) return *run;
  throw UsageError(fmt::format("'{}' is no number of a run; {}", argument, listAdvice));
}

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
    case StateType::interrupted:
      return isBusy ? "running" : "interrupted";
    case StateType::done:
      return "done";
    case StateType::partlyUndone:
      return fmt::format("undone but for {}", journal.pending().size());
    case StateType::undone:
      return journal.wasDone() ? "undone" : "interrupted, undone";
  }
  return {};
}

std::string row(std::string_view run, std::string_view time, std::string_view files,
                std::string_view state, std::string_view folder) {
  return fmt::format("{:>4}  {:<19}  {:>7}  {:<19}  {}\n", run, time, files, state, folder);
}

std::string listRow(const RunStore& store, RunNumber run, bool isBusy) {
  const auto journal = openJournal(store.folderOf(run));
  const std::string number = fmt::format("{}", run);
  if (journal == nullptr) return row(number, "?", "?", "damaged", "?");
  return row(number, timeText(journal->time()), fmt::format("{}", journal->changed().size()),
             journal->hasIntactBytes() ? stateText(*journal, isBusy) : "damaged",
             withEscapesInLine(journal->commonFolder()));
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
  tellOfDamaged(store, console);
  return ExitCodeType::done;
}

// --- the undo ---

// Throws JournalError if no file of the request can be restored.
void checkUndoable(RunNumber run, const Journal& journal, const UndoRequest& request) {
  if (request.select(journal, journal.changed()).empty()) {
    throw JournalError(fmt::format("run {} changed no file in '{}', but some in '{}'", run,
                                   request.limit, journal.commonFolder()));
  }
  if (!request.select(journal, journal.pending()).empty()) return;
  const bool isWhole = journal.pending().empty();
  throw JournalError(fmt::format(
      "run {} {}{}; {}", run,
      journal.wasDone() ? "is undone already" : "was interrupted and is taken back already",
      isWhole ? "" : fmt::format(" in '{}'", request.limit), listAdvice));
}

std::string counted(std::size_t count, std::string_view things) {
  return fmt::format("{} {}{}", count, things, count == 1 ? "" : "s");
}

// An undo or its preview, and the result.
struct Undo {
  RunNumber run = 0;
  std::unique_ptr<Journal> journal;
  // The files that were to be restored, and their folder.
  FileNumbers selected;
  std::string folder;
  RestoreResult result;
  bool isDry = false;

  // The number of files that were to be restored and were not.
  std::size_t leftCount() const;
};

std::size_t Undo::leftCount() const {
  if (isDry) return result.changed.size() + result.failed.size();
  FileNumbers left;
  std::ranges::set_intersection(selected, journal->pending(), std::back_inserter(left));
  return left.size();
}

std::string describe(const Undo& undone) {
  const std::size_t restored = undone.result.restored.size();
  const std::size_t left = undone.leftCount();
  const std::string_view verb = restored == 1 ? "is" : "are";
  std::string text = undone.result.isCutShort ? "interrupted; " : "";
  text += fmt::format("run {}: {} {} as {} before", undone.run, counted(restored, "file"),
                      undone.isDry ? "would be" : verb, restored == 1 ? "it was" : "they were");
  if (left == 0) return text;
  if (undone.isDry) return text + fmt::format(", {} would be left", left);
  return text + fmt::format(", {} {} left; once nothing is in the way, 'soca undo {}' goes on",
                            left, left == 1 ? "is" : "are", undone.run);
}

void printFiles(const Undo& undone, bool isVerbose, Console& console) {
  const ClassRoots roots({});
  const FileNames names(&roots);
  if (isVerbose) {
    for (const std::uint32_t number : undone.result.restored) {
      console.printError(names.shown(undone.journal->files()[number].path) +
                         (undone.isDry ? ": would be as before\n" : ": as before\n"));
    }
  }
  for (const auto* files : {&undone.result.changed, &undone.result.failed}) {
    for (const LeftFile& file : *files) {
      console.complain(fmt::format("'{}' {} left as it is: {}", names.shown(file.path),
                                   undone.isDry ? "would be" : "is", file.reason));
    }
  }
}

void announce(const Undo& undo, Console& console) {
  console.tell(fmt::format("run {} of {}: {} in '{}'", undo.run, timeText(undo.journal->time()),
                           counted(undo.selected.size(), "file"), undo.folder));
}

ExitCodeType report(const Undo& undone, bool isVerbose, Console& console) {
  printFiles(undone, isVerbose, console);
  for (const std::string& warning : undone.result.warnings) console.tell(warning);
  console.tell(describe(undone));
  if (undone.result.isCutShort) return interruptExitCode();
  return undone.leftCount() == 0 ? ExitCodeType::done : ExitCodeType::failed;
}

// Throws JournalError if there is no such run.
void checkExists(const RunStore& store, RunNumber run) {
  const auto runs = store.runs();
  if (std::ranges::find(runs, run) != runs.end()) return;
  throw JournalError(fmt::format("there is no run {}; {}", run, listAdvice));
}

// Throws JournalError if the journal is damaged. Only a part that is named is restored in spite of
// a damaged old text, since then the user knows of it.
void checkIntact(const RunStore& store, RunNumber run, const UndoRequest& request) {
  const auto fault = findFault(store.folderOf(run));
  if (!fault) return;
  const bool isReadable = openJournal(store.folderOf(run)) != nullptr;
  if (isReadable && !request.limit.empty()) return;
  throw JournalError(fmt::format(
      "run {0} can't be undone: {1}; {2}'soca undo --forget {0}' names its files and removes the "
      "journal; other runs can be undone by their numbers",
      run, *fault,
      isReadable ? fmt::format("'soca undo {} FILE' puts back a file whose text is whole; ", run)
                 : ""));
}

// Throws JournalError if there is no such run, or it cannot be undone.
Undo openRun(const RunStore& store, RunNumber run, const UndoRequest& request) {
  checkExists(store, run);
  checkIntact(store, run, request);
  Undo undo;
  undo.run = run;
  undo.journal = std::make_unique<Journal>(store.folderOf(run));
  checkUndoable(run, *undo.journal, request);
  undo.selected = request.select(*undo.journal, undo.journal->pending());
  undo.folder = request.folderIn(*undo.journal);
  return undo;
}

// If only the reader of the messages is gone, the files are put back all the same.
bool goesOn() { return !wasInterrupted() || interruptExitCode() == ExitCodeType::readerGone; }

ExitCodeType preview(const RunStore& store, const UndoRequest& request, const Options& options,
                     Console& console) {
  if (store.isLocked()) console.tell("another soca is changing files, so this may change");
  tellOfInterrupted(store, "'soca undo'", console);
  const auto run = request.findRun(store);
  if (!run) throw JournalError(request.whyNoRun(store));
  Undo undo = openRun(store, *run, request);
  undo.isDry = true;
  announce(undo, console);
  undo.result = previewUndo(*undo.journal, undo.selected, goesOn);
  return report(undo, options.verbose, console);
}

// The result of `undo` for a run that had to be repaired, which has undone it.
ExitCodeType exitCodeOfRepaired(const RunStore& store, RunNumber run) {
  if (wasInterrupted()) return interruptExitCode();
  const auto journal = openJournal(store.folderOf(run));
  const bool isUndone = journal == nullptr || journal->pending().empty();
  return isUndone ? ExitCodeType::done : ExitCodeType::failed;
}

// Without a number, the interrupted run instead of an older one, even if it had changed no file.
std::optional<RunNumber> chooseRepaired(const UndoRequest& request, std::optional<RunNumber> run,
                                        const std::vector<RepairedRun>& repaired) {
  const bool isNewest = !repaired.empty() && (!run || repaired.back().run > *run) &&
                        repaired.back().type == RepairedRun::Type::notBegun;
  if (!request.run && isNewest) return repaired.back().run;
  const bool isRepaired =
      run && std::ranges::find(repaired, *run, &RepairedRun::run) != repaired.end();
  return isRepaired ? run : std::nullopt;
}

// --- forgetting ---

void printPaths(const std::vector<std::string>& paths, Console& console) {
  for (const std::string& path : paths) console.print(withEscapesInLine(path) + '\n');
}

// Each once. Throws UsageError.
std::vector<RunNumber> runsOf(const std::vector<std::string>& arguments) {
  std::vector<RunNumber> runs;
  for (const std::string& argument : arguments) {
    const RunNumber run = runOf(argument);
    if (std::ranges::find(runs, run) == runs.end()) runs.push_back(run);
  }
  return runs;
}

std::string describeTemporaries(RunNumber run, std::size_t count, std::string_view verb) {
  return fmt::format("run {}: {} that it had left {} removed", run,
                     counted(count, "temporary file"), verb);
}

void complainOfRest(const std::string& path, std::string_view reason, Console& console) {
  console.complain(fmt::format("'{}' can't be removed: {}", withEscapesInLine(path), reason));
}

// Without its journal, no later run knows of them. Returns whether all are removed.
bool removeTemporaries(const std::string& folder, RunNumber run, Console& console) {
  const auto paths = leftTemporaries(folder);
  std::size_t count = 0;
  for (const std::string& path : paths) {
    if (::unlink(path.c_str()) == 0) {
      ++count;
    } else {
      complainOfRest(path, std::strerror(errno), console);
    }
  }
  if (count > 0) console.tell(describeTemporaries(run, count, count == 1 ? "is" : "are"));
  return count == paths.size();
}

// Returns whether nothing of the run is left.
bool forgetRun(const RunStore& store, const RunStore::Lock& lock, RunNumber run, Console& console) {
  const std::string folder = store.folderOf(run);
  printPaths(readablePaths(folder), console);
  const bool isClean = removeTemporaries(folder, run, console);
  const auto rests = store.remove(lock, run);
  for (const auto& rest : rests) complainOfRest(rest.path, rest.reason, console);
  if (rests.empty()) {
    console.tell(fmt::format("run {} is forgotten, and can't be undone any more", run));
  }
  return isClean && rests.empty();
}

ExitCodeType previewForgetting(const RunStore& store, const std::vector<RunNumber>& runs,
                               Console& console) {
  for (const RunNumber run : runs) checkExists(store, run);
  for (const RunNumber run : runs) {
    printPaths(readablePaths(store.folderOf(run)), console);
    const std::size_t count = leftTemporaries(store.folderOf(run)).size();
    if (count > 0) console.tell(describeTemporaries(run, count, "would be"));
    console.tell(fmt::format("run {} would be forgotten", run));
  }
  return ExitCodeType::done;
}

ExitCodeType forgetRuns(const RunStore& store, const Options& options, Console& console) {
  const auto runs = runsOf(options.arguments);
  if (options.dryRun) return previewForgetting(store, runs, console);
  catchBrokenPipes();
  const auto lock = lockRuns(store, console, goesOn);
  if (!lock) return interruptExitCode();
  repairAndReport(store, *lock, console, goesOn);
  for (const RunNumber run : runs) checkExists(store, run);
  bool isClean = true;
  for (const RunNumber run : runs) {
    if (wasInterrupted()) return interruptExitCode();
    isClean = forgetRun(store, *lock, run, console) && isClean;
  }
  return isClean ? ExitCodeType::done : ExitCodeType::failed;
}

}  // namespace

ExitCodeType runUndo(const Options& options, Console& console) {
  const RunStore store;
  if (options.list) return listRuns(store, console);
  if (options.forget) return forgetRuns(store, options, console);
  const UndoRequest request(options);
  if (options.dryRun) return preview(store, request, options, console);

  catchBrokenPipes();
  const auto lock = lockRuns(store, console, goesOn);
  if (!lock) return interruptExitCode();
  // Before the repair: if the last run is an interrupted one, no other run is undone.
  const auto run = request.findRun(store);
  const auto repaired = repairAndReport(store, *lock, console, goesOn);
  if (!goesOn()) return interruptExitCode();
  if (const auto chosen = chooseRepaired(request, run, repaired)) {
    return exitCodeOfRepaired(store, *chosen);
  }
  if (!run) throw JournalError(request.whyNoRun(store));
  Undo undo = openRun(store, *run, request);
  tellOfDamaged(store, console);
  announce(undo, console);
  {
    WriteProgress progress(&console, "files put back");
    undo.result = undoRun(*undo.journal, undo.selected, goesOn, progress.onStep());
  }
  return report(undo, options.verbose, console);
}

}  // namespace soca::cli
