#include "files/writing/FileAttributes.h"

#include <fmt/core.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

namespace soca {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr const char* accessList = "system.posix_acl_access";

// The names, each terminated by NUL. A file system without attributes has no names.
std::vector<std::string> splitNames(std::string_view bytes) {
  std::vector<std::string> names;
  while (!bytes.empty()) {
    names.emplace_back(bytes.substr(0, bytes.find('\0')));
    bytes.remove_prefix(names.back().size() + 1);
  }
  return names;
}

enum class CopyType { done, forbidden, failed };

// What the last error of a call on an attribute means.
CopyType typeOfError() {
  const bool isForbidden = errno == EPERM || errno == EACCES || errno == ENOTSUP;
  return isForbidden ? CopyType::forbidden : CopyType::failed;
}

// Empty, with errno, if they cannot be read.
std::optional<std::vector<std::string>> attributeNames(const std::string& path) {
  const ssize_t size = ::llistxattr(path.c_str(), nullptr, 0);
  if (size < 0 && errno == ENOTSUP) return std::vector<std::string>();
  if (size < 0) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  const ssize_t count = ::llistxattr(path.c_str(), bytes.data(), bytes.size());
  if (count < 0) return std::nullopt;
  return splitNames({bytes.data(), static_cast<std::size_t>(count)});
}

// Empty, with errno, if it cannot be read. `read` is a system call that takes a place and its size.
template <class Read>
std::optional<std::string> valueOf(const Read& read) {
  const ssize_t size = read(nullptr, 0);
  if (size < 0) return std::nullopt;
  std::string value(static_cast<std::size_t>(size), '\0');
  const ssize_t count = read(value.data(), value.size());
  if (count < 0) return std::nullopt;
  value.resize(static_cast<std::size_t>(count));
  return value;
}

CopyType copyAttribute(const std::string& path, const std::string& name, int newFile) {
  const auto value = valueOf([&](char* place, std::size_t size) {
    return ::lgetxattr(path.c_str(), name.c_str(), place, size);
  });
  if (!value) return typeOfError();
  if (::fsetxattr(newFile, name.c_str(), value->data(), value->size(), 0) == 0) {
    return CopyType::done;
  }
  const CopyType type = typeOfError();
  const int error = errno;
  // Some the new file has from its folder, and nobody may set them.
  const auto own = valueOf([&](char* place, std::size_t size) {
    return ::fgetxattr(newFile, name.c_str(), place, size);
  });
  errno = error;
  return own == value ? CopyType::done : type;
}

std::string errorText(std::string_view what) {
  return fmt::format("{}: {}", what, std::strerror(errno));
}

// The new file may have inherited one from its folder.
bool dropAccessList(int newFile) {
  return ::fremovexattr(newFile, accessList) == 0 || errno == ENODATA || errno == ENOTSUP;
}

void copyExtendedAttributes(const std::string& path, int newFile, CopiedAttributes& result) {
  const auto names = attributeNames(path);
  if (!names) {
    result.fault = errorText("its extended attributes could not be read");
    return;
  }
  for (const std::string& name : *names) {
    const CopyType type = copyAttribute(path, name, newFile);
    if (type == CopyType::failed || (type == CopyType::forbidden && name == accessList)) {
      result.fault = errorText(fmt::format("its attribute '{}' could not be copied", name));
      return;
    }
    if (type == CopyType::forbidden) result.forbidden.push_back(name);
  }
  const bool hasAccessList = std::ranges::find(*names, accessList) != names->end();
  if (hasAccessList || dropAccessList(newFile)) return;
  result.fault = errorText("the access list that the new file has from its folder stays");
}

}  // namespace

std::int64_t nanosecondsOf(const timespec& time) {
  return std::int64_t{time.tv_sec} * second + time.tv_nsec;
}

timespec timeOf(std::int64_t nanoseconds) {
  const std::int64_t rest = ((nanoseconds % second) + second) % second;
  return {(nanoseconds - rest) / second, rest};
}

bool isOf(const struct stat& status, const fl::filesystem::FileStamp& stamp) {
  return status.st_dev == stamp.device && status.st_ino == stamp.inode &&
         static_cast<std::uint64_t>(status.st_size) == stamp.size &&
         nanosecondsOf(status.st_mtim) == stamp.modificationTime &&
         nanosecondsOf(status.st_ctim) == stamp.changeTime;
}

CopiedAttributes copyAttributes(const std::string& path, const struct stat& old, int newFile) {
  CopiedAttributes result;
  struct stat own = {};
  // The owner first, because changing it may remove permissions.
  const bool isOwned =
      ::fstat(newFile, &own) == 0 && ((own.st_uid == old.st_uid && own.st_gid == old.st_gid) ||
                                      ::fchown(newFile, old.st_uid, old.st_gid) == 0);
  if (!isOwned) {
    result.fault = errorText("the new file could not get the owner of the old one");
    return result;
  }
  copyExtendedAttributes(path, newFile, result);
  if (result.fault.empty() && ::fchmod(newFile, old.st_mode & 07777U) != 0) {
    result.fault = errorText("the new file could not get the permissions of the old one");
  }
  return result;
}

}  // namespace soca
