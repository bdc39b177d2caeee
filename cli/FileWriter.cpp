#include "cli/FileWriter.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <unordered_set>

#include "cli/ClassRoots.h"

namespace soca::cli {
namespace {

constexpr std::string_view changedReason = "it changed since it was read; run the update again";

std::string errorText(std::string_view what) {
  return fmt::format("{}: {}", what, std::strerror(errno));
}

// A new file beside another one; it is closed, but not removed, at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) {
    const std::size_t slash = target.rfind('/') + 1;
    path_ = fmt::format("{}.{}.soca-XXXXXX", target.substr(0, slash), target.substr(slash));
    descriptor_ = ::mkostemp(path_.data(), O_CLOEXEC);
  }
  ~TemporaryFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }
  const std::string& path() const { return path_; }

  bool write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

  // Owner first, since a change of the owner can take permissions away.
  bool takeRightsOf(const struct stat& old) const {
    struct stat own = {};
    if (::fstat(descriptor_, &own) != 0) return false;
    const bool isSameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    if (!isSameOwner && ::fchown(descriptor_, old.st_uid, old.st_gid) != 0) return false;
    return ::fchmod(descriptor_, old.st_mode & 07777U) == 0;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
};

std::optional<std::string> fill(const TemporaryFile& file, const Replacement& replacement,
                                const struct stat& old) {
  if (!file.write(replacement.bytes)) return errorText("the new text could not be written");
  if (!file.takeRightsOf(old)) {
    return errorText("the new file could not get the owner and permissions of the old one");
  }
  return std::nullopt;
}

// So few files are flushed one by one; for more, whole file systems are.
constexpr std::size_t fewFiles = 8;

enum class FlushType { file, fileSystem };

bool flushPath(const std::string& path, FlushType type) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const int result = type == FlushType::file ? ::fsync(descriptor) : ::syncfs(descriptor);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return result == 0;
}

// Whether the file is still the one that the replacement was computed from.
bool isUnchanged(const std::string& path, const fl::filesystem::FileStamp& stamp) {
  return fl::filesystem::stampOf(path) == stamp;
}

}  // namespace

std::optional<std::string> findReasonNotToReplace(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return errorText("it can't be looked at");
  if (!S_ISREG(status.st_mode)) return "it is no regular file";
  if (status.st_nlink > 1) {
    return "it has more than one hard link, and replacing it would part them";
  }
  return std::nullopt;
}

FileWriter::~FileWriter() {
  for (const StagedFile& file : staged_) {
    if (file.isPending) ::unlink(file.temporary.c_str());
  }
}

std::optional<std::string> FileWriter::stage(const Replacement& replacement) {
  if (auto reason = findReasonNotToReplace(replacement.path)) return reason;
  const std::string target = resolveLinks(replacement.path).value_or(replacement.path);
  struct stat old = {};
  if (::stat(target.c_str(), &old) != 0) return errorText("it can't be looked at");
  if (!isUnchanged(target, replacement.stamp)) return std::string(changedReason);
  const TemporaryFile file(target);
  if (!file.isOpen()) return errorText("no new file could be made beside it");
  if (auto reason = fill(file, replacement, old)) {
    ::unlink(file.path().c_str());
    return reason;
  }
  staged_.push_back({target, file.path(), old.st_dev, replacement.stamp});
  return std::nullopt;
}

std::optional<std::string> FileWriter::flush() const {
  const auto type = staged_.size() <= fewFiles ? FlushType::file : FlushType::fileSystem;
  std::unordered_set<std::uint64_t> devices;
  for (const StagedFile& file : staged_) {
    if (!devices.insert(file.device).second && type == FlushType::fileSystem) continue;
    if (!flushPath(file.temporary, type)) {
      return errorText("the new text could not be flushed to the disk");
    }
  }
  return std::nullopt;
}

std::optional<std::string> FileWriter::commit(std::size_t index) {
  StagedFile& file = staged_[index];
  if (!isUnchanged(file.target, file.stamp)) return std::string(changedReason);
  if (::rename(file.temporary.c_str(), file.target.c_str()) != 0) {
    return errorText("it could not be replaced");
  }
  file.isPending = false;
  return std::nullopt;
}

}  // namespace soca::cli
