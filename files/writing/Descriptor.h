// A file descriptor that is closed by its owner.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace soca {

class Descriptor {
 public:
  Descriptor() = default;
  // -1 means none, as in the results of system calls.
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }

  // Writes all bytes; returns false and sets errno on failure.
  bool write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = ::write(number_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

 private:
  // Keeps errno, for the reason of an earlier failure.
  void close() const {
    if (number_ < 0) return;
    const int error = errno;
    ::close(number_);
    errno = error;
  }

  int number_ = -1;
};

}  // namespace soca
