// Text that is written line by line.
#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace bench {

class LineWriter {
 public:
  // A line at a level of indentation.
  template <class... Args>
  void line(std::size_t level, fmt::format_string<Args...> format, Args&&... args) {
    text_.append(4 * level, ' ');
    fmt::format_to(std::back_inserter(text_), format, std::forward<Args>(args)...);
    text_ += '\n';
  }
  // A line that contains braces.
  void verbatim(std::size_t level, std::string_view code) { line(level, "{}", code); }
  void blank() { text_ += '\n'; }

  std::size_t size() const { return text_.size(); }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

}  // namespace bench
