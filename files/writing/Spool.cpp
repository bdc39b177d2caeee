#include "files/writing/Spool.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace soca {
namespace {

constexpr std::size_t bufferSize = std::size_t{4} << 20U;

[[noreturn]] void fail(std::string_view what) {
  throw std::runtime_error(fmt::format("{}: {}", what, std::strerror(errno)));
}

std::string temporaryFolder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

}  // namespace

Spool::~Spool() { drop(); }

void Spool::drop() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
  inFile_ = 0;
  buffer_ = {};
}

Spool::Place Spool::put(std::string_view text) {
  const Place place{inFile_ + buffer_.size(), text.size()};
  buffer_ += text;
  if (buffer_.size() > bufferSize) writeOut();
  return place;
}

std::string Spool::take(const Place& place) {
  if (place.offset >= inFile_) return buffer_.substr(place.offset - inFile_, place.size);
  if (place.offset + place.size > inFile_) {
    const std::uint64_t written = inFile_ - place.offset;
    return take({place.offset, written}) + take({inFile_, place.size - written});
  }
  std::string text(place.size, '\0');
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = ::pread(descriptor_, text.data() + done, text.size() - done,
                                  static_cast<off_t>(place.offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) fail("a temporary file could not be read");
    done += static_cast<std::size_t>(count);
  }
  return text;
}

void Spool::openFile() {
  const std::string folder = temporaryFolder();
  descriptor_ = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor_ >= 0) return;
  // Not every file system supports files without a name.
  std::string path = folder + "/soca-XXXXXX";
  descriptor_ = ::mkostemp(path.data(), O_CLOEXEC);
  if (descriptor_ < 0) fail(fmt::format("no temporary file could be made in '{}'", folder));
  ::unlink(path.c_str());
}

void Spool::writeOut() {
  if (descriptor_ < 0) openFile();
  for (std::string_view rest = buffer_; !rest.empty();) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail("a temporary file could not be written");
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  inFile_ += buffer_.size();
  buffer_.clear();
}

}  // namespace soca
