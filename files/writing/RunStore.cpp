#include "files/writing/RunStore.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>
#include <filesystem>
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

bool isInterrupted(const std::string& folder) {
  if (isSettled(folder)) return false;
  const auto journal = openJournal(folder);
  return journal != nullptr && journal->state() == Journal::StateType::interrupted;
}

std::uint64_t sizeOf(const std::string& folder) {
  struct stat status = {};
  if (::stat((folder + "/before").c_str(), &status) != 0) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

RunStore::RunStore() : folder_(stateFolder()) {}

std::optional<RunStore::Lock> RunStore::lock(const std::function<void()>& onWait,
                                             const GoesOn& goesOn) const {
  makeFolders(runsFolder(folder_));
  const std::string path = lockPath(folder_);
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) fail(path, "can't be opened");
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
  const Descriptor file(::open(lockPath(folder_).c_str(), O_RDWR | O_CLOEXEC));
  return file.isOpen() && ::flock(file.number(), LOCK_SH | LOCK_NB) != 0;
}

std::vector<RunNumber> RunStore::runs() const {
  std::vector<RunNumber> numbers;
  std::error_code error;
  for (auto entry = fs::directory_iterator(runsFolder(folder_), error);
       !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (const auto run = parseRunNumber(entry->path().filename().string())) numbers.push_back(*run);
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
  const RunNumber run = numbers.empty() ? 1 : numbers.back() + 1;
  const std::string folder = folderOf(run);
  if (::mkdir(folder.c_str(), 0700) != 0) fail(folder, "can't be made");
  return run;
}

void RunStore::remove(const Lock&, RunNumber run) const {
  // If this is interrupted, the rest is no run, or one that never began.
  const std::string folder = folderOf(run);
  for (const char* name : {"/before", "/state"}) ::unlink((folder + name).c_str());
  ::rmdir(folder.c_str());
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
    if (isTooMuch && !isInterrupted(folder)) remove(lock, run);
  }
}

std::optional<RunNumber> parseRunNumber(std::string_view text) {
  RunNumber run = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), run);
  const bool isNumber = error == std::errc() && end == text.data() + text.size() && run > 0;
  return isNumber ? std::optional(run) : std::nullopt;
}

}  // namespace soca
