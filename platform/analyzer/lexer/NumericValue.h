// The value of a numeric literal.
#pragma once

#include <cstdint>
#include <type_traits>
#include <variant>

namespace lf::astapi {

// An imaginary number, as in `2i`.
struct Imaginary {
  double value = 0;
};

// Without a suffix a decimal literal is a double, and a hexadecimal or binary one has the smallest
// unsigned type that fits.
template <class Tag>
using NumericValue =
    std::variant<double, Imaginary, std::uint8_t, std::uint16_t, std::uint32_t, std::uint64_t,
                 std::int8_t, std::int16_t, std::int32_t, std::int64_t>;

namespace internal {

// Whether a numeric value is 1. An imaginary number never is.
struct IsOneVisitor {
  template <class Number>
  bool operator()(const Number& value) const {
    if constexpr (std::is_same_v<Number, Imaginary>) {
      return false;
    } else {
      return value == Number{1};
    }
  }
};

}  // namespace internal
}  // namespace lf::astapi
