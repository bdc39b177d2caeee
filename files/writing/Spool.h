// Texts put aside until the end of a run: small ones in memory, beyond that in a file that nobody
// else sees and that is gone with the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace soca {

class Spool {
 public:
  // Where a text was put.
  struct Place {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
  };

  Spool() = default;
  ~Spool();
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;

  // A place may also be several that were put one after the other, or a part of them.
  // Both throw std::runtime_error if the file can't be made, written or read.
  Place put(std::string_view text);
  std::string take(const Place& place);
  // Forgets all that was put. The file goes away before the system has brought it to the disk.
  void drop();

 private:
  void openFile();
  void writeOut();

  int descriptor_ = -1;
  // How much of what was put stands in the file; the rest stands in the buffer.
  std::uint64_t inFile_ = 0;
  std::string buffer_;
};

}  // namespace soca
