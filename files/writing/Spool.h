// Texts stored until the end of a run: a few in memory, more of them in an unnamed file, which is
// deleted with the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace soca {

class Spool {
 public:
  // The place of a stored text.
  struct Place {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
  };

  Spool() = default;
  ~Spool();
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;

  // A place may also cover several texts that were stored one after the other, or parts of them.
  // Both throw std::runtime_error if the file cannot be made, written or read.
  Place put(std::string_view text);
  std::string take(const Place& place);
  // Drops all texts. The file is deleted before the system writes it to the disk.
  void drop();

 private:
  void openFile();
  void writeOut();

  int descriptor_ = -1;
  // The number of bytes in the file; the rest is in the buffer.
  std::uint64_t inFile_ = 0;
  std::string buffer_;
};

}  // namespace soca
