// Numbers: `12`, `1.5e-3`, `2i`, `0x1Fu8`, `0b101`.
#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

#include "platform/analyzer/lexer/Lexer.h"
#include "platform/analyzer/text/CharacterClass.h"

namespace ca {
namespace {

using Value = lf::astapi::NumericValue<void>;

// The digit that `c` is, or 16.
unsigned hexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10U;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10U;
  return 16;
}

template <class Integer>
std::optional<Value> fit(std::uint64_t value) {
  if (value > static_cast<std::uint64_t>(std::numeric_limits<Integer>::max())) return std::nullopt;
  return Value(static_cast<Integer>(value));
}

std::optional<Value> fitSmallestUnsigned(std::uint64_t value) {
  if (auto fitted = fit<std::uint8_t>(value)) return fitted;
  if (auto fitted = fit<std::uint16_t>(value)) return fitted;
  if (auto fitted = fit<std::uint32_t>(value)) return fitted;
  return Value(value);
}

std::optional<Value> fitSuffix(std::uint64_t value, bool isSigned, unsigned bits) {
  switch (bits) {
    case 8:
      return isSigned ? fit<std::int8_t>(value) : fit<std::uint8_t>(value);
    case 16:
      return isSigned ? fit<std::int16_t>(value) : fit<std::uint16_t>(value);
    case 32:
      return isSigned ? fit<std::int32_t>(value) : fit<std::uint32_t>(value);
    default:
      return isSigned ? fit<std::int64_t>(value) : fit<std::uint64_t>(value);
  }
}

// Whether a number in decimal digits is less than one. Decides whether a number out of the range of
// a double is too small or too large.
bool isBelowOne(const std::string& digits) {
  const std::size_t mark = std::min(digits.find_first_of("eE"), digits.size());
  const std::size_t point = std::min(digits.find('.'), mark);
  const std::size_t leading = digits.find_first_not_of("0.");
  if (leading >= mark) return true;
  long exponent = 0;
  if (mark < digits.size()) {
    const bool hasPlus = digits[mark + 1] == '+';
    const char* begin = digits.data() + mark + (hasPlus ? 2 : 1);
    const char* end = digits.data() + digits.size();
    if (std::from_chars(begin, end, exponent).ec != std::errc()) return *begin == '-';
  }
  const long scale = leading < point ? static_cast<long>(point - leading) - 1
                                     : static_cast<long>(point) - static_cast<long>(leading);
  return scale + exponent < 0;
}

// Integers of this many decimal digits, and powers of ten up to this exponent, are exact doubles.
// The quotient of two exact doubles is correctly rounded.
constexpr std::uint32_t mostExactDigits = 15;
constexpr std::array<double, mostExactDigits + 1> powersOfTen{
    1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Empty for a number too large for a double; one that is too small is zero.
std::optional<double> toDouble(fl::ustring_view digits) {
  std::string ascii;
  for (const char16_t c : digits) {
    ascii.push_back(c == u'd' || c == u'D' ? 'e' : static_cast<char>(c));
  }
  double value = 0;
  const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  if (isBelowOne(ascii)) return 0;
  return std::nullopt;
}

}  // namespace

Lexer::Number Lexer::scanNumber(std::uint32_t begin) const {
  const char16_t mark = text_[begin + 1];
  if (text_[begin] == u'0' && (mark == u'x' || mark == u'X') && hexDigit(text_[begin + 2]) < 16) {
    return scanBasedNumber(begin, 4);
  }
  if (text_[begin] == u'0' && (mark == u'b' || mark == u'B') && hexDigit(text_[begin + 2]) < 2) {
    return scanBasedNumber(begin, 1);
  }
  std::uint32_t position = begin;
  std::uint64_t digits = 0;
  const auto takeDigits = [&] {
    const std::uint32_t first = position;
    for (; isDigit(text_[position]); ++position) digits = digits * 10 + (text_[position] - u'0');
    return position - first;
  };
  const auto isPointAt = [&](std::uint32_t at) {
    if (text_[at] != u'.') return false;
    const char16_t next = text_[at + 1];
    if (next == u'*' || next == u'/' || next == u'\\' || next == u'^' || next == u'\'')
      return false;
    return !isContinuationAt(at) || text_[at + 3] == u'.';
  };
  const std::uint32_t wholeCount = takeDigits();
  std::uint32_t decimalCount = 0;
  if (isPointAt(position)) {
    ++position;
    decimalCount = takeDigits();
  }
  bool isExact = wholeCount + decimalCount <= mostExactDigits;
  const char16_t exponent = text_[position];
  if (exponent == u'e' || exponent == u'E' || exponent == u'd' || exponent == u'D') {
    const char16_t sign = text_[position + 1];
    const std::uint32_t first = position + (sign == u'+' || sign == u'-' ? 2 : 1);
    if (isDigit(text_[first])) {
      isExact = false;
      position = first;
      takeDigits();
    }
  }
  const std::optional<double> value = isExact
                                          ? static_cast<double>(digits) / powersOfTen[decimalCount]
                                          : toDouble({text_ + begin, position - begin});
  const bool fits = value.has_value();
  if (text_[position] == u'i' || text_[position] == u'j') {
    return {.value = lf::astapi::Imaginary{value.value_or(0)}, .end = position + 1, .fits = fits};
  }
  return {.value = value.value_or(0), .end = position, .fits = fits};
}

Lexer::Number Lexer::scanBasedNumber(std::uint32_t begin, unsigned bitsPerDigit) const {
  const unsigned base = 1U << bitsPerDigit;
  std::uint32_t position = begin + 2;
  std::uint64_t value = 0;
  bool fits = true;
  for (; hexDigit(text_[position]) < base; ++position) {
    fits = fits && value >> (64U - bitsPerDigit) == 0;
    value = value << bitsPerDigit | hexDigit(text_[position]);
  }
  const char16_t sign = text_[position];
  unsigned bits = 0;
  if (sign == u'u' || sign == u's') {
    const char16_t tens = text_[position + 1];
    // The text may end before the second digit of the suffix.
    const char16_t ones = tens != 0 ? text_[position + 2] : u'\0';
    if (tens == u'8') bits = 8;
    if (tens == u'1' && ones == u'6') bits = 16;
    if (tens == u'3' && ones == u'2') bits = 32;
    if (tens == u'6' && ones == u'4') bits = 64;
  }
  if (bits != 0) position += bits == 8 ? 2 : 3;
  const std::optional<Value> fitted =
      bits == 0 ? fitSmallestUnsigned(value) : fitSuffix(value, sign == u's', bits);
  return {.value = fitted.value_or(Value(value)), .end = position, .fits = fits && fitted};
}

}  // namespace ca
