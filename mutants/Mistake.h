// One small mistake that can be made in a file of the project.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace mutants {

enum class KindType { arguments, comparison, condition, constant, statement };

// A half-open range of the bytes of a file.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// Text around a span, so that one build has the mistake and the original: `before`, an expression
// that is true if the mistake is made, `middle`, the original text, `after`.
//   a < b   ->   (isOn(7) ? (a <= b) : (a < b))
struct Wrapping {
  Span span;
  std::string before;
  std::string middle;
  std::string after;
};

// Numbers of mistakes are below this, and not 0.
constexpr unsigned numberLimit = 1U << 16U;

struct Mistake {
  // Relative to the root of the project.
  std::string file;
  // The lines that it touches, from 1.
  std::size_t line = 0;
  std::size_t lastLine = 0;
  KindType kind = KindType::constant;
  // The text and what replaces it, each as one line.
  std::string original;
  std::string replacement;
  std::vector<Wrapping> wrappings;
  // Computed from the line and the replacement, so that changes elsewhere leave it as it is. A few
  // mistakes have the same number.
  unsigned number = 0;
};

}  // namespace mutants
