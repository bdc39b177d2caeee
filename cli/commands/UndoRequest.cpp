#include "cli/commands/UndoRequest.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <ranges>
#include <string_view>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "files/targets/NearestFile.h"
#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"
#include "platform/paths/NativePath.h"

namespace soca::cli {
namespace {

constexpr std::size_t namedRuns = 3;

FileNumbers numbersBelow(const Journal& journal, const FileNumbers& numbers,
                         std::string_view folder) {
  FileNumbers below;
  std::ranges::copy_if(numbers, std::back_inserter(below), [&](std::uint32_t number) {
    return relativeTo(folder, journal.files()[number].path).has_value();
  });
  return below;
}

// One whose journal is damaged might, and an older run must not be undone instead of it.
bool concerns(const RunStore& store, RunNumber run, std::string_view folder) {
  const auto journal = openJournal(store.folderOf(run));
  return journal == nullptr || !numbersBelow(*journal, journal->changed(), folder).empty();
}

// "run 3 changed files in '/a', run 2 in '/b'"
std::string describeLast(const RunStore& store, const std::vector<RunNumber>& runs) {
  std::vector<std::string> parts;
  for (const RunNumber run : runs | std::views::reverse | std::views::take(namedRuns)) {
    const auto journal = openJournal(store.folderOf(run));
    if (journal == nullptr || journal->commonFolder().empty()) continue;
    parts.push_back(fmt::format("run {} {}in '{}'", run, parts.empty() ? "changed files " : "",
                                journal->commonFolder()));
  }
  return fmt::format("{}", fmt::join(parts, ", "));
}

// The path without links in the part of it that exists. May be relative without a current folder.
std::string resolveExisting(const std::string& argument) {
  if (auto resolved = resolveLinks(argument)) return *resolved;
  std::filesystem::path folder = fl::filesystem::makeAbsoluteLexically(argument);
  std::filesystem::path missing;
  while (folder.has_relative_path()) {
    missing = missing.empty() ? folder.filename() : folder.filename() / missing;
    folder = folder.parent_path();
    if (const auto resolved = resolveLinks(folder)) return *resolved / missing;
  }
  return missing;
}

}  // namespace

UndoRequest::UndoRequest(const Options& options) : currentFolder_(resolveLinks(".").value_or("")) {
  for (const std::string& argument : options.arguments) {
    if (const auto number = parseRunNumber(argument)) {
      if (run) throw UsageError("'undo' takes one run at a time");
      run = number;
      continue;
    }
    if (!limit.empty()) throw UsageError("'undo' takes one file or folder at a time");
    limit = resolveExisting(argument);
    if (!resolveLinks(argument)) missing_ = argument;
    if (argument.empty()) throwMissing();
  }
  // Every path is in a folder without a name: the last run anywhere would be undone.
  if (!run && limit.empty() && currentFolder_.empty()) {
    throw UsageError("the current folder does not exist any more");
  }
}

// A folder that is gone is one if a run knows files in it.
void UndoRequest::checkLimit(const RunStore& store) const {
  if (missing_.empty()) return;
  const auto knows = [&](RunNumber number) {
    const auto journal = openJournal(store.folderOf(number));
    return journal != nullptr && !select(*journal, journal->changed()).empty();
  };
  if (std::ranges::none_of(store.runs(), knows)) throwMissing();
}

void UndoRequest::throwMissing() const {
  throw UsageError(fmt::format(
      "'{}' is no number of a run, and no file or folder{}; 'soca undo --list' shows the runs",
      missing_, didYouMean(nearestPath(missing_))));
}

std::optional<RunNumber> UndoRequest::findRun(const RunStore& store) const {
  checkLimit(store);
  if (run) return run;
  const std::string& folder = limit.empty() ? currentFolder_ : limit;
  const auto runs = store.runs();
  const auto last = std::ranges::find_if(runs.rbegin(), runs.rend(), [&](RunNumber number) {
    return concerns(store, number, folder);
  });
  return last == runs.rend() ? std::nullopt : std::optional(*last);
}

FileNumbers UndoRequest::select(const Journal& journal, const FileNumbers& numbers) const {
  return limit.empty() ? numbers : numbersBelow(journal, numbers, limit);
}

const std::string& UndoRequest::folderIn(const Journal& journal) const {
  return limit.empty() ? journal.commonFolder() : limit;
}

std::string UndoRequest::whyNoRun(const RunStore& store) const {
  const auto runs = store.runs();
  if (runs.empty()) return "there is no run to undo";
  return fmt::format(
      "no run that is known has changed a file in '{}'; {}; give the number of the run to undo, as "
      "'soca undo --list' shows it",
      limit.empty() ? currentFolder_ : limit, describeLast(store, runs));
}

}  // namespace soca::cli
