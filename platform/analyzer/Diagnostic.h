// A syntax error.
#pragma once

#include <cstdint>
#include <string>

namespace ca {

struct Diagnostic {
  // Zero-based; the column counts UTF-16 code units in the line.
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  // One sentence in UTF-8 without a full stop: what was expected and what was found, such as
  // "expected `)` to close `(`, found end of line".
  std::string message;
};

}  // namespace ca
