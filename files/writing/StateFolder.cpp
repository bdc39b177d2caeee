#include "files/writing/StateFolder.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "files/writing/Flush.h"

namespace soca {
namespace {

constexpr std::string_view advice =
    "set XDG_STATE_HOME to the absolute path of a folder that you may write to";

std::optional<std::string> absolutePathIn(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return value;
}

// Why the program does not use what has the status; empty if it does.
std::string_view whyNotTrusted(const struct stat& status, mode_t type) {
  if (S_ISLNK(status.st_mode)) return "is a link";
  if ((status.st_mode & S_IFMT) != type) {
    return type == S_IFDIR ? "is no folder" : "is no regular file";
  }
  return status.st_uid == ::geteuid() ? "" : "belongs to another user";
}

}  // namespace

std::string stateFolder() {
  if (const auto state = absolutePathIn("XDG_STATE_HOME")) return *state + "/soca";
  if (const auto home = absolutePathIn("HOME")) return *home + "/.local/state/soca";
  throw JournalError(
      fmt::format("there is no place for the journal of what is written, since neither "
                  "XDG_STATE_HOME nor HOME is an absolute path; {}",
                  advice));
}

void makeFolders(const std::string& path) {
  for (std::size_t slash = path.find('/', 1); true; slash = path.find('/', slash + 1)) {
    const std::string folder = path.substr(0, slash);
    struct stat status = {};
    const bool isThere = ::stat(folder.c_str(), &status) == 0;
    if (!isThere && ::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
      throw JournalError(fmt::format("the folder '{}' for the journal can't be made: {}; {}",
                                     folder, std::strerror(errno), advice));
    }
    // If a folder cannot be flushed, the system writes its entry later.
    if (!isThere) flushPath(path.substr(0, std::max<std::size_t>(path.rfind('/', slash - 1), 1)));
    if (slash == std::string::npos) return;
  }
}

void secureFolder(const std::string& path) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) return;
  const auto fault = whyNotTrusted(status, S_IFDIR);
  if (!fault.empty()) {
    throw JournalError(
        fmt::format("the folder '{}' for the journal is not used, since it {}", path, fault));
  }
  if ((status.st_mode & 0077U) == 0 || ::chmod(path.c_str(), 0700) == 0) return;
  throw JournalError(fmt::format("the folder '{}' for the journal can't be closed for others: {}",
                                 path, std::strerror(errno)));
}

Descriptor openOwnFile(const std::string& path, int flags) {
  // A pipe in place of the file must not block.
  Descriptor file(
      ::open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
    const std::string_view reason =
        errno == ELOOP ? std::string_view("it is a link") : std::strerror(errno);
    throw JournalError(fmt::format("the journal's '{}' can't be opened: {}", path, reason));
  }
  const auto fault = whyNotTrusted(status, S_IFREG);
  if (fault.empty()) return file;
  throw JournalError(fmt::format("the journal's '{}' is not used, since it {}", path, fault));
}

}  // namespace soca
