#include "files/writing/FileAttributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace soca {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::string_view accessList = "system.posix_acl_access";

// The names, each terminated by NUL. A file system without attributes has no names.
std::vector<std::string> splitNames(std::string_view bytes) {
  std::vector<std::string> names;
  while (!bytes.empty()) {
    names.emplace_back(bytes.substr(0, bytes.find('\0')));
    bytes.remove_prefix(names.back().size() + 1);
  }
  return names;
}

std::vector<std::string> attributeNames(const std::string& path) {
  const ssize_t size = ::llistxattr(path.c_str(), nullptr, 0);
  if (size <= 0) return {};
  std::string bytes(static_cast<std::size_t>(size), '\0');
  const ssize_t count = ::llistxattr(path.c_str(), bytes.data(), bytes.size());
  return splitNames({bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))});
}

bool copyAttribute(const std::string& path, const std::string& name, int newFile) {
  const ssize_t size = ::lgetxattr(path.c_str(), name.c_str(), nullptr, 0);
  if (size < 0) return false;
  std::string value(static_cast<std::size_t>(size), '\0');
  const ssize_t count = ::lgetxattr(path.c_str(), name.c_str(), value.data(), value.size());
  return count >= 0 &&
         ::fsetxattr(newFile, name.c_str(), value.data(), static_cast<std::size_t>(count), 0) == 0;
}

bool copyExtendedAttributes(const std::string& path, int newFile) {
  bool hasAccessList = false;
  for (const std::string& name : attributeNames(path)) {
    const bool isCopied = copyAttribute(path, name, newFile);
    if (name != accessList) continue;
    if (!isCopied) return false;
    hasAccessList = true;
  }
  // The new file may have inherited one from its folder.
  if (!hasAccessList && ::flistxattr(newFile, nullptr, 0) > 0) {
    ::fremovexattr(newFile, accessList.data());
  }
  return true;
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

bool copyAttributes(const std::string& path, const struct stat& old, int newFile) {
  struct stat own = {};
  if (::fstat(newFile, &own) != 0) return false;
  // The owner first, because changing it may remove permissions.
  const bool isSameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
  if (!isSameOwner && ::fchown(newFile, old.st_uid, old.st_gid) != 0) return false;
  if (!copyExtendedAttributes(path, newFile)) return false;
  return ::fchmod(newFile, old.st_mode & 07777U) == 0;
}

}  // namespace soca
