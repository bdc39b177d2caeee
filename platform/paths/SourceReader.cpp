#include "platform/paths/SourceReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <memory>
#include <string_view>
#include <system_error>

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

[[noreturn]] void fail(const std::string& path, std::string_view reason) {
  throw ReadError(path + ": " + std::string(reason));
}

[[noreturn]] void failWithError(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      fail(path, "there is no such file");
    case EACCES:
    case EPERM:
      fail(path, "there is no permission to read it");
    case ENXIO:  // a socket
      fail(path, "it is no regular file");
    default:
      fail(path, std::generic_category().message(error));
  }
}

// A file that is open for reading.
class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      // Without O_NONBLOCK, opening a pipe waits for a writer.
      : path_(path),
        descriptor_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {
    if (descriptor_ < 0) failWithError(path, errno);
  }
  ~OpenFile() { ::close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  struct stat getStatus() const {
    struct stat status;
    if (::fstat(descriptor_, &status) != 0) failWithError(path_, errno);
    return status;
  }

  // Reads up to `size` bytes; 0 at the end of the file.
  std::size_t read(char* to, std::size_t size) const {
    while (true) {
      const ssize_t count = ::read(descriptor_, to, size);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) failWithError(path_, errno);
    }
  }

 private:
  const std::string& path_;
  int descriptor_;
};

void checkReadable(const std::string& path, const struct stat& status, std::uint64_t maximumSize) {
  if (S_ISDIR(status.st_mode)) fail(path, "it is a folder");
  if (!S_ISREG(status.st_mode)) fail(path, "it is no regular file");
  if (static_cast<std::uint64_t>(status.st_size) > maximumSize) {
    fail(path, "it is larger than the limit of " + std::to_string(maximumSize) + " bytes");
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

std::optional<FileStamp> stampOf(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return makeStamp(status);
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

std::string readFileBytes(const std::string& path, std::uint64_t maximumSize) {
  const OpenFile file(path);
  const struct stat status = file.getStatus();
  checkReadable(path, status, maximumSize);
  return std::string(readBytes(file, static_cast<std::size_t>(status.st_size)).view());
}

}  // namespace fl::filesystem
