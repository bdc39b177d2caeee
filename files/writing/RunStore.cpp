#include "files/writing/RunStore.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>
#include <ranges>

#include "files/writing/Journal.h"
#include "files/writing/StateFolder.h"

namespace soca {
namespace {

namespace fs = std::filesystem;

constexpr timespec waitingTime = {0, 50'000'000};

[[noreturn]] void fail(const std::string& path, std::string_view what) {
  throw JournalError(fmt::format("the journal's '{}' {}: {}", path, what, std::strerror(errno)));
}

std::string lockPath(const std::string& folder) { return folder + "/lock"; }
std::string runsFolder(const std::string& folder) { return folder + "/runs"; }

// Whether the run is whole and needs no repair.
bool isFinished(const std::string& folder) {
  return isSettled(folder) && !findFault(folder).has_value();
}

RunStore::Rest restAt(const std::string& path) { return {path, std::strerror(errno)}; }

// Deletes a folder of a journal, or what is in place of it, as far as possible.
std::vector<RunStore::Rest> discard(const std::string& folder) {
  // A link must not be followed.
  if (::unlink(folder.c_str()) == 0 || errno == ENOENT) return {};
  std::vector<RunStore::Rest> rests;
  for (const char* name : {"/before", "/state", "/state.new"}) {
    const std::string path = folder + name;
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) rests.push_back(restAt(path));
  }
  if (::rmdir(folder.c_str()) != 0 && rests.empty()) rests.push_back(restAt(folder));
  return rests;
}

std::uint64_t sizeOf(const std::string& folder) {
  struct stat status = {};
  if (::lstat((folder + "/before").c_str(), &status) != 0) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

RunStore::RunStore() : folder_(stateFolder()) {}

std::optional<RunStore::Lock> RunStore::lock(const std::function<void()>& onWait,
                                             const GoesOn& goesOn) const {
  secure();
  makeFolders(runsFolder(folder_));
  const std::string path = lockPath(folder_);
  Descriptor file = openOwnFile(path, O_RDWR | O_CREAT);
  bool isWaiting = false;
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) fail(path, "can't be locked");
    if (!goesOn()) return std::nullopt;
    if (!isWaiting) onWait();
    isWaiting = true;
    ::nanosleep(&waitingTime, nullptr);
  }
  return Lock(std::move(file));
}

bool RunStore::isLocked() const {
  secure();
  const std::string path = lockPath(folder_);
  if (::access(path.c_str(), F_OK) != 0) return false;
  return ::flock(openOwnFile(path, O_RDWR).number(), LOCK_SH | LOCK_NB) != 0;
}

std::vector<RunNumber> RunStore::runs() const { return numbersOf(""); }

void RunStore::secure() const {
  secureFolder(folder_);
  secureFolder(runsFolder(folder_));
}

std::vector<RunNumber> RunStore::numbersOf(std::string_view suffix) const {
  secure();
  std::vector<RunNumber> numbers;
  std::error_code error;
  for (auto entry = fs::directory_iterator(runsFolder(folder_), error);
       !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!name.ends_with(suffix)) continue;
    const auto run = parseRunNumber(std::string_view(name).substr(0, name.size() - suffix.size()));
    // A folder such as '007' would be listed as another one.
    if (run && name == fmt::format("{}{}", *run, suffix)) numbers.push_back(*run);
  }
  if (error && error != std::errc::no_such_file_or_directory) {
    throw JournalError(
        fmt::format("the journal's '{}' can't be read: {}", runsFolder(folder_), error.message()));
  }
  std::ranges::sort(numbers);
  return numbers;
}

std::string RunStore::folderOf(RunNumber run) const {
  return fmt::format("{}/{}", runsFolder(folder_), run);
}

RunNumber RunStore::add(const Lock&) const {
  const auto numbers = runs();
  if (!numbers.empty() && numbers.back() == std::numeric_limits<RunNumber>::max()) {
    throw JournalError(
        fmt::format("a new run needs a higher number than all others, but '{}' has the highest "
                    "one; 'soca undo --forget {}' removes it",
                    folderOf(numbers.back()), numbers.back()));
  }
  const RunNumber run = numbers.empty() ? 1 : numbers.back() + 1;
  const std::string folder = newFolderOf(folderOf(run));
  if (::mkdir(folder.c_str(), 0700) != 0) fail(folder, "can't be made");
  return run;
}

std::vector<RunStore::Rest> RunStore::remove(const Lock&, RunNumber run) const {
  // After the new name it is no run, even if the rest is interrupted.
  const std::string folder = folderOf(run);
  const std::string old = oldFolderOf(folder);
  discard(newFolderOf(folder));
  // What is left of an older run with this number is in the way of the new name.
  if (auto rests = discard(old); !rests.empty()) return rests;
  if (std::rename(folder.c_str(), old.c_str()) == 0) return discard(old);
  if (errno == ENOENT) return {};
  return {restAt(folder)};
}

std::vector<RunNumber> RunStore::removeRests(const Lock&) const {
  for (const RunNumber run : numbersOf(oldFolderOf(""))) discard(oldFolderOf(folderOf(run)));
  auto unbegun = numbersOf(newFolderOf(""));
  for (const RunNumber run : unbegun) discard(newFolderOf(folderOf(run)));
  return unbegun;
}

void RunStore::prune(const Lock& lock) const {
  auto numbers = runs();
  std::size_t count = 0;
  std::uint64_t bytes = 0;
  for (const RunNumber run : numbers | std::views::reverse) {
    const std::string folder = folderOf(run);
    ++count;
    bytes += sizeOf(folder);
    const bool isTooMuch = count > mostRuns || (count > 1 && bytes > mostBytes);
    if (isTooMuch && isFinished(folder)) remove(lock, run);
  }
}

std::optional<RunNumber> parseRunNumber(std::string_view text) {
  RunNumber run = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), run);
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && run > 0;
  return isNumber ? std::optional(run) : std::nullopt;
}

}  // namespace soca
