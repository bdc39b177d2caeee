// A list of JSON values that is printed at the end, and may be as long as a tree of classes is
// large.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "files/writing/Spool.h"
#include "reports/ReportOutput.h"

namespace soca {

class SpooledList {
 public:
  void add(std::string_view value) {
    size_ += spool_.put(size_ == 0 ? "\n  " : ",\n  ").size;
    size_ += spool_.put(value).size;
  }

  // Prints the list in brackets.
  void print(ReportOutput& output) {
    output.print("[");
    for (std::uint64_t offset = 0; offset < size_;) {
      std::string text = spool_.take({offset, std::min(stretch, size_ - offset)});
      offset += text.size();
      if (offset < size_) offset -= dropLastCharacter(text);
      output.print(text);
    }
    output.print("]");
  }

 private:
  // The end of a stretch may cut a character. Returns the number of bytes.
  static std::size_t dropLastCharacter(std::string& text) {
    const std::size_t size = text.size();
    while ((static_cast<unsigned char>(text.back()) & 0xC0U) == 0x80) text.pop_back();
    text.pop_back();
    return size - text.size();
  }

  static constexpr std::uint64_t stretch = std::uint64_t{1} << 20U;

  Spool spool_;
  std::uint64_t size_ = 0;
};

}  // namespace soca
