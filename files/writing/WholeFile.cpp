#include "files/writing/WholeFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace soca {
namespace {

constexpr std::size_t largestBuffer = std::size_t{1} << 16U;
constexpr mode_t newFileMode = 0666;

// A rename would replace a special file, such as a device, by a plain one, and needs no right to
// write the file itself.
void checkIsReplaceable(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return;
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("it is a folder");
  if (!S_ISREG(status.st_mode)) throw std::runtime_error("it is no regular file");
  if (::access(path.c_str(), W_OK) != 0) throw std::runtime_error(std::strerror(errno));
}

}  // namespace

WholeFile::WholeFile(std::string path)
    : path_(std::move(path)), temporary_(fmt::format("{}.{}.tmp", path_, ::getpid())) {
  checkIsReplaceable(path_);
  file_ = Descriptor(::open(temporary_.c_str(),
                            O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, newFileMode));
  if (!file_.isOpen()) throw std::runtime_error(std::strerror(errno));
}

WholeFile::~WholeFile() {
  if (file_.isOpen()) ::unlink(temporary_.c_str());
}

void WholeFile::write(std::string_view text) {
  buffer_ += text;
  if (buffer_.size() >= largestBuffer) writeOut();
}

void WholeFile::writeOut() {
  if (error_ == 0 && !file_.write(buffer_)) error_ = errno;
  buffer_.clear();
}

std::optional<std::string> WholeFile::commit() {
  writeOut();
  if (error_ == 0 && ::rename(temporary_.c_str(), path_.c_str()) != 0) error_ = errno;
  if (error_ != 0) return std::strerror(error_);
  file_ = Descriptor();
  return std::nullopt;
}

}  // namespace soca
