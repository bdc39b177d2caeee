#include "files/writing/FileWriter.h"

#include <fcntl.h>
#include <fmt/ranges.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "files/writing/Descriptor.h"
#include "files/writing/FileAttributes.h"
#include "files/writing/Flush.h"
#include "files/writing/Journal.h"

namespace soca {
namespace {

std::string errorText(std::string_view what) {
  return fmt::format("{}: {}", what, std::strerror(errno));
}

std::optional<std::string> findReason(const struct stat& status) {
  if (!S_ISREG(status.st_mode)) return "it is no regular file";
  if (status.st_nlink > 1) {
    return "it has more than one hard link, and replacing it would part them";
  }
  return std::nullopt;
}

bool setModificationTime(int file, std::int64_t nanoseconds) {
  const timespec times[] = {{0, UTIME_OMIT}, timeOf(nanoseconds)};
  return ::futimens(file, times) == 0;
}

// `forbidden` gets the names of the attributes that the system does not let the new file have.
std::optional<std::string> fill(const Descriptor& file, const Replacement& replacement,
                                const struct stat& old, std::vector<std::string>& forbidden) {
  if (!file.write(replacement.bytes)) return errorText("the new text could not be written");
  auto attributes = copyAttributes(replacement.path, old, file.number());
  if (!attributes.fault.empty()) return std::move(attributes.fault);
  forbidden = std::move(attributes.forbidden);
  const auto time = replacement.modificationTime;
  if (time && !setModificationTime(file.number(), *time)) {
    return errorText("the new file could not get the time of the old one");
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> findReasonNotToReplace(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return errorText("it can't be looked at");
  return findReason(status);
}

std::optional<std::string> FileWriter::stage(std::size_t number, const Replacement& replacement) {
  struct stat old = {};
  if (::lstat(replacement.path.c_str(), &old) != 0) return errorText("it can't be looked at");
  if (!isOf(old, replacement.stamp)) return std::string(changedReason);
  if (auto reason = findReason(old)) return reason;
  std::string temporary = temporaryPath(replacement.path, token_, number);
  const Descriptor file(
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) return errorText("no new file could be made beside it");
  StagedFile staged{replacement.path, std::move(temporary), replacement.stamp};
  if (auto reason = fill(file, replacement, old, staged.forbiddenAttributes)) {
    ::unlink(staged.temporary.c_str());
    return reason;
  }
  staged_.push_back(std::move(staged));
  return std::nullopt;
}

std::optional<std::string> FileWriter::flush() const {
  std::vector<std::string> paths;
  paths.reserve(staged_.size());
  for (const StagedFile& file : staged_) paths.push_back(file.temporary);
  if (flushPaths(paths)) return std::nullopt;
  return errorText("the new text could not be flushed to the disk");
}

std::optional<std::string> FileWriter::commit(std::size_t index) {
  StagedFile& file = staged_[index];
  struct stat status = {};
  const bool isThere = ::lstat(file.target.c_str(), &status) == 0;
  if (!isThere || !isOf(status, file.stamp)) return std::string(changedReason);
  if (::rename(file.temporary.c_str(), file.target.c_str()) != 0) {
    return errorText("it could not be replaced");
  }
  file.isPending = false;
  file.isCommitted = true;
  return std::nullopt;
}

void FileWriter::discardRest() {
  for (StagedFile& file : staged_) {
    if (!file.isPending) continue;
    ::unlink(file.temporary.c_str());
    file.isPending = false;
  }
}

std::vector<std::string> FileWriter::warnings() const {
  std::vector<std::string> warnings;
  warnings.reserve(staged_.size());
  for (const StagedFile& file : staged_) {
    if (!file.isCommitted || file.forbiddenAttributes.empty()) continue;
    warnings.push_back(fmt::format(
        "warning: '{}' no longer has what the system does not let you copy, the attributes {}",
        file.target, fmt::join(file.forbiddenAttributes, ", ")));
  }
  return warnings;
}

std::optional<std::string> FileWriter::flushFolders() const {
  std::vector<std::string> folders;
  for (const StagedFile& file : staged_) {
    folders.push_back(file.target.substr(0, file.target.rfind('/') + 1));
  }
  std::ranges::sort(folders);
  const auto repeated = std::ranges::unique(folders);
  folders.erase(repeated.begin(), repeated.end());
  if (flushPaths(folders)) return std::nullopt;
  return errorText("the folders of the new files could not be flushed to the disk");
}

}  // namespace soca
