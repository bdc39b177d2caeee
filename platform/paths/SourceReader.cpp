#include "platform/paths/SourceReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <string_view>
#include <system_error>

#include "platform/paths/SystemCall.h"
#include "platform/paths/ViewMemory.h"
#include "platform/timing/Phase.h"

namespace fl::filesystem {
namespace {

// The clock of a file system may be this coarse; two changes within one tick have the same time.
constexpr std::int64_t settlingTime = 20'000'000;  // nanoseconds

std::int64_t toNanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::int64_t now() {
  timespec time;
  ::clock_gettime(CLOCK_REALTIME, &time);
  return toNanoseconds(time);
}

FileStamp makeStamp(const struct stat& status) {
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          toNanoseconds(status.st_mtim), toNanoseconds(status.st_ctim)};
}

// A file that is open for reading.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      // Without O_NONBLOCK, opening a pipe waits for a writer.
      : path_(path), descriptor_(uninterrupted([&] {
          return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
        })) {
    if (descriptor_ < 0) throwReadError(path, errno);
  }
  ~OpenFile() { ::close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  struct stat getStatus() const {
    struct stat status;
    if (uninterrupted([&] { return ::fstat(descriptor_, &status); }) != 0) {
      throwReadError(path_, errno);
    }
    return status;
  }

  // Reads up to `size` bytes; 0 at the end of the file.
  std::size_t read(char* to, std::size_t size) const {
    const ssize_t count = uninterrupted([&] { return ::read(descriptor_, to, size); });
    if (count < 0) throwReadError(path_, errno);
    return static_cast<std::size_t>(count);
  }

 private:
  const std::string& path_;
  int descriptor_;
};

void checkIsRegular(const std::string& path, const struct stat& status) {
  if (S_ISDIR(status.st_mode)) throwReadError(path, EISDIR);
  if (!S_ISREG(status.st_mode)) throwReadError(path, ENXIO);
}

void checkReadable(const std::string& path, const struct stat& status, std::uint64_t maximumSize) {
  checkIsRegular(path, status);
  if (static_cast<std::uint64_t>(status.st_size) > maximumSize) {
    throw TooLargeError(path,
                        "it is larger than the limit of " + std::to_string(maximumSize) + " bytes");
  }
}

// Bytes that are not zeroed before they are read into.
struct Bytes {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;

  std::string_view view() const { return {data.get(), size}; }
};

// Reads to the size that the file had when it was opened, or to its end if that is earlier.
Bytes readBytes(const OpenFile& file, std::size_t size) {
  Bytes bytes{std::unique_ptr<char[]>(new char[size]), 0};
  while (bytes.size < size) {
    const std::size_t count = file.read(bytes.data.get() + bytes.size, size - bytes.size);
    if (count == 0) break;
    bytes.size += count;
  }
  return bytes;
}

}  // namespace

void throwReadError(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      throw ReadError(path, "there is no such file");
    case EACCES:
    case EPERM:
      throw ReadError(path, "there is no permission to read it");
    case EISDIR:
      throw ReadError(path, "it is a folder");
    case ENXIO:  // a socket
      throw ReadError(path, "it is no regular file");
    default:
      throw ReadError(path, std::generic_category().message(error));
  }
}

bool isNotThere(int error) { return error == ENOENT || error == ENOTDIR; }

std::optional<FileStamp> stampOf(const std::string& path) {
  struct stat status;
  if (uninterrupted([&] { return ::stat(path.c_str(), &status); }) == 0) return makeStamp(status);
  if (isNotThere(errno)) return std::nullopt;
  throwReadError(path, errno);
}

std::optional<FileStamp> stampInView(const std::string& path) {
  thread_local ViewMemory<std::optional<FileStamp>, 512> known;
  if (const auto* stamp = known.find(path)) return *stamp;
  const std::optional<FileStamp> stamp = stampOf(path);
  known.keep(path, stamp);
  return stamp;
}

SourceFileText readSourceFile(const std::string& path, std::uint64_t maximumSize) {
  const timing::Phase phase(timing::readPhase);
  const std::int64_t start = now();
  const OpenFile file(path);
  const struct stat status = file.getStatus();
  checkReadable(path, status, maximumSize);
  const Bytes bytes = readBytes(file, static_cast<std::size_t>(status.st_size));
  DecodedText decoded = decodeFileText(bytes.view());
  SourceFileText result{std::move(decoded.text), decoded.encoding, makeStamp(status), false};
  result.recentlyChanged = start - result.stamp.changeTime < settlingTime;
  return result;
}

std::string readHeadOfFile(const std::string& path, std::size_t size) {
  const OpenFile file(path);
  checkIsRegular(path, file.getStatus());
  return std::string(readBytes(file, size).view());
}

std::string readFileBytes(const std::string& path, std::uint64_t maximumSize) {
  const OpenFile file(path);
  const struct stat status = file.getStatus();
  checkReadable(path, status, maximumSize);
  return std::string(readBytes(file, static_cast<std::size_t>(status.st_size)).view());
}

}  // namespace fl::filesystem
